// vornsdk-inspect: looks at a vornsdk data directory without changing it (see Inspector.hpp).
#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

#include "Inspector.hpp"

int main(int argc, char** argv) {
  vorn::inspect::Options options;
  std::string dataDirectory;
  std::string module;
  CLI::App app{
      "Lists the key store and the defaults of a vornsdk data directory, or decrypts one "
      "module's secure preferences. Opens the stores read-only: safe beside a running app."};
  app.add_option("DATA_DIR", dataDirectory, "The data directory (keychain.db, defaults.db)")
      ->required();
  auto* decrypt = app.add_option(
      "--decrypt", module, "Print this module's (push, cdp) secure preferences as key = value");
  app.add_flag("--show-key-material", options.showKeyMaterial,
               "Print key store values, keys and vectors as hex instead of hiding them");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  options.dataDirectory = dataDirectory;
  if (decrypt->count() > 0)
    options.decryptModule = module;
  try {
    return vorn::inspect::inspect(options, std::cout, std::cerr);
  } catch (const std::exception& error) {
    // The library throws nothing; this is the last guard of the output streams and maps.
    std::cerr << "vornsdk-inspect: " << error.what() << "\n";
    return vorn::inspect::kFailed;
  }
}
