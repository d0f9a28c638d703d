// What walls leave out, and whether what they shut in has a head of its own.
#pragma once

namespace aem::detail {

struct System;

/// Fills System::ignored; a fatal finding where the reference point is shut in, or a closed wall shuts in a
/// region that is computed and has no given head.  A drain or a routed stream gives one only where it gets
/// water.  Where several walls together shut it in it is left out with a warning, unless water comes or goes
/// there.  Pre: System::enclosures.
void FindIgnored(System& system);

/// Whether a wall keeps its inside only, so that nothing comes from infinity.
bool KeepsInside(const System& system);

/// After a solve: a fatal finding where all that could hold the head of a closed region stands idle.
void CheckIdle(System& system);

/// Areas of recharge, without their parts on ignored ground.
void BuildAreas(System& system);

/// The level of the potential on ignored ground is free: the integral of the jump around it is set to zero.
///  Fills System::loops.
void WeighLoops(System& system);

}  // namespace aem::detail
