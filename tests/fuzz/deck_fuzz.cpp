// Any bytes are a deck or a fault: no crash, no hang, no message without end.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "vadox1/deck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const vadox1::Deck deck = vadox1::ParseDeck({reinterpret_cast<const char*>(data), size});
  if (deck.fault && (deck.fault->text.size() > 200 || deck.fault->what.empty())) std::abort();
  for (const aem::LineSinkString& string : deck.model.line_sinks) {
    for (std::size_t i = 0; string.kind == aem::LineSinkKind::kStream && i + 1 < string.segments.size();
         ++i) {
      if (string.segments[i].to != string.segments[i + 1].from) std::abort();
    }
  }
  return 0;
}
