// Runs a fuzz target's saved inputs once each, without libFuzzer, so that the normal test
// build (and its sanitizer builds) keeps every seed and every fixed crasher passing.
//
//   vorn_<name>_replay <corpus folder> [<crash folder>...]
//
// The corpus folder must hold at least one file; the other folders may be empty or absent.
// Files run in name order. A crash or abort in the target fails the test as it would fail
// the fuzzer.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.is_regular_file())
      files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

void replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  // A copy of exactly the file's size, so reading past the input is caught as in the fuzzer.
  const auto data = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), data.get());
  LLVMFuzzerTestOneInput(data.get(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s <corpus folder> [<crash folder>...]\n", argv[0]);
    return 2;
  }
  std::size_t corpus = 0;
  std::size_t total = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& file : filesIn(argv[i])) {
      std::printf("%s\n", file.filename().c_str());
      std::fflush(stdout);
      replay(file);
      ++total;
      corpus += i == 1 ? 1 : 0;
    }
  }
  if (corpus == 0) {
    std::fprintf(stderr, "no inputs in %s\n", argv[1]);
    return 1;
  }
  std::printf("replayed %zu inputs\n", total);
  return 0;
}
