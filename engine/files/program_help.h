// What every outside program answers to --help and --version.
#pragma once

#include <string_view>

namespace files {

/// When the only argument is --help, -h or --version: prints the answer and gives true.
bool AnswersHelp(int argc, const char* const* argv, std::string_view name, std::string_view help);

}  // namespace files
