// Replays the seeds of a fuzz target and a fixed number of mutations of them: <seed folder> <rounds>.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Random = std::mt19937;

std::size_t Below(Random& random, std::size_t limit) {
  return limit == 0 ? 0 : random() % limit;
}

constexpr const char* kNasty[] = {"-1",     "0",    "1e999", "-9999",      "nan",  "99999999999999999999",
                                  "1E-320", ".",    "inf",   "2147483647", "-0.0", "1e300",
                                  "quit",   "stop", "\x1a",  "1.70141E+38"};

void Mutate(std::string& text, const std::vector<std::string>& seeds, Random& random) {
  const std::size_t at = Below(random, text.size());
  switch (random() % 8) {
    case 0:
      if (!text.empty()) text[at] = static_cast<char>(random());
      break;
    case 1:
      text.erase(at, 1 + Below(random, 40));
      break;
    case 2:
      text.insert(at, 1, static_cast<char>(random()));
      break;
    case 3:
      text.resize(at);
      break;
    case 4: {  // a piece of another seed
      const std::string& other = seeds[Below(random, seeds.size())];
      text.insert(at, other.substr(Below(random, other.size()), Below(random, 200)));
      break;
    }
    case 5:
    case 6: {  // another word or number in place of one
      const std::size_t begin = text.find_first_not_of(" \r\n\t", at);
      if (begin == std::string::npos) break;
      const std::size_t end = std::min(text.find_first_of(" \r\n\t", begin), text.size());
      text.replace(begin, end - begin, kNasty[Below(random, std::size(kNasty))]);
      break;
    }
    default: {  // a line doubled or dropped
      const std::size_t begin = std::min(text.find('\n', at), text.size());
      const std::size_t end = std::min(text.find('\n', begin + 1), text.size());
      if (begin >= end) break;
      if (random() % 2 == 0) {
        text.erase(begin, end - begin);
      } else {
        text.insert(begin, text.substr(begin, end - begin));
      }
    }
  }
}

/// The input in hand, written out when it fails: the next run can take it as a seed.
std::string current;

void Keep(int) {
  std::fwrite(current.data(), 1, current.size(), stdout);
  std::fflush(stdout);
  std::_Exit(3);
}

void Try(const std::string& text) {
  current = text;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::signal(SIGABRT, Keep);
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<std::string> seeds;
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    Try(seeds.back());
  }
  if (seeds.empty()) {
    std::fprintf(stderr, "no seeds in %s\n", argv[1]);
    return 1;
  }
  Random random(20240229);
  const long rounds = std::strtol(argv[2], nullptr, 10);
  for (long round = 0; round < rounds; ++round) {
    std::string text = seeds[Below(random, seeds.size())];
    for (std::size_t k = 1 + Below(random, 6); k > 0; --k) Mutate(text, seeds, random);
    Try(text);
  }
  std::printf("%zu seeds and %ld mutations\n", seeds.size(), rounds);
  return 0;
}
