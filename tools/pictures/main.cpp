// Draws the windows of the desktop shell into PNG files.
#include "WindowPictures.h"
#include "base/Messages.h"
#include "base/SettingsStore.h"
#include "host/TavixHost.h"
#include "shell/ShellStyle.h"
#include "shell/ShellWindow.h"

#include <QApplication>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

using namespace tavix;
using namespace tavix::pictures;
using Veldra::Solenne::Tavix::TavixHost;

namespace {

constexpr int kUsage = 2;
constexpr int kFailed = 3;

// Nobody is there to answer a message box.
class ConsoleMessages final : public Messages {
  public:
    void warn(std::string_view text, std::string_view) override {
        std::fprintf(stderr, "tavix-pictures: %s\n", std::string(text).c_str());
    }
    Answer ask(std::string_view text, std::string_view, Answer preset) override {
        warn(text, {});
        return preset;
    }
    std::unique_ptr<Busy> busy() override { return std::make_unique<Busy>(); }
};

int draw(int argc, char** argv) {
    PictureOptions options;
    std::string scheme = "light";
    CLI::App cli("Writes pictures of the main windows to a folder and prints their paths; needs no display.",
                 "tavix-pictures");
    cli.add_option("folder", options.folder, "Folder for the pictures; made if there is none")->required();
    cli.add_option("repository", options.repository, "Profile repository to show; without it the welcome page only");
    cli.add_option("--job", options.job, "Report to show, by the name of its job; without it the first one");
    cli.add_option("--scheme", scheme, "Colours: light (the default) or dark")
        ->check(CLI::IsMember({"light", "dark"}))
        ->option_text("light|dark");
    constexpr int kLargest = 10000;
    cli.add_option("--width", options.width, "Width of the window in device-independent pixels")
        ->check(CLI::Range(1, kLargest));
    cli.add_option("--height", options.height, "Height of the window")->check(CLI::Range(1, kLargest));
    try {
        cli.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return cli.exit(error) == 0 ? 0 : kUsage;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArguments = 1;
    const QApplication app(qtArguments, argv);
    shell::applyLook(colorSchemeOf(scheme));
    ConsoleMessages messages;
    // With the settings of a first start, whatever the user has chosen.
    TavixHost host(messages, makeMemorySettings());
    shell::ShellWindow window(host, messages);
    return takePictures(window, host, options) ? 0 : kFailed;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return draw(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tavix-pictures: %s\n", error.what());
        return kFailed;
    }
}
