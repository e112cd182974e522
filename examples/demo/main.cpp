// The end-to-end demo of vornsdk with its two reference modules against a local collector.
//
//   vorn_demo [--data DIR]                  the demo: two app runs and the collector's summary
//   vorn_demo --kill-test [--data DIR]      kill a run with events on disk, then restart it
//   vorn_demo --app RUN --data DIR --collector URL [--events N]   one app run (see DemoApp.hpp)
#include <CLI/CLI.hpp>
#include <filesystem>

#include "DemoApp.hpp"
#include "Orchestrator.hpp"

int main(int argc, char** argv) {
  CLI::App cli{"vornsdk end-to-end demo"};
  demo::AppOptions app;
  bool killTest = false;
  app.dataDirectory = std::filesystem::current_path() / "vorn-demo-data";
  cli.add_option("--data", app.dataDirectory, "Data directory (emptied first by the demo)");
  cli.add_option("--app", app.run, "Run one app process: first, second, track or upload");
  cli.add_option("--collector", app.collectorUrl, "The collector's base URL (with --app)");
  cli.add_option("--events", app.events, "Events of the kill test");
  cli.add_flag("--kill-test", killTest, "Kill a run with events on disk, then restart it");
  CLI11_PARSE(cli, argc, argv);

  if (!app.run.empty())
    return demo::runApp(app);
  if (killTest)
    return demo::runKillTest(app.dataDirectory, app.events);
  return demo::runDemo(app.dataDirectory);
}
