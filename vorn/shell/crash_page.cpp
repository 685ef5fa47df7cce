// SPDX-License-Identifier: MIT
#include "vorn/shell/crash_page.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/shell/engine.hpp"

#include <windows.h>

#include <array>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <exception>
#include <execinfo.h>
#include <filesystem>
#include <fstream>
#include <new>
#include <string_view>
#include <sys/utsname.h>
#include <typeinfo>
#include <utility>

namespace Vorn {
namespace {

namespace fs = std::filesystem;

/// Never destroyed: an exception may still come while the program ends.
CrashPage& Details() {
    static auto* const details = new CrashPage;
    return *details;
}

struct Fault {
    std::string type, text, advice;
};

std::string TypeName() {
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (!type)
        return "none: std::terminate was called";
    int status = 0;
    char* name = abi::__cxa_demangle(type->name(), nullptr, nullptr, &status);
    std::string result = name ? name : type->name();
    std::free(name); // NOLINT(cppcoreguidelines-no-malloc): as the function asks for
    return result;
}

bool IsFolder(const char* path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

/// `part` is what the game's folder holds and another one does not.
std::string FilesAdvice(const std::string& part) {
    std::error_code ignored;
    const std::string folder = fs::current_path(ignored).string();
    if (!IsFolder(part.c_str()))
        return "The game looks for its files in the folder that it is started in, and " + folder +
               " holds no " + part + "/. Start it in its own folder, or by the script beside it.";
    return "A file of the game, below " + folder +
           ", is missing or has a fault. Install the game again; if you have changed the file "
           "yourself, mend it.";
}

std::string AdviceFor(const std::exception& exception) {
    const std::string_view text = exception.what();
    if (text.starts_with("VORN_PLAY"))
        return "The game was to play a recording, and cannot. Name another, or start it without "
               "VORN_PLAY.";
    if (dynamic_cast<const DataError*>(&exception) || text.find("cannot open") != text.npos ||
        text.find("data/") != text.npos)
        return FilesAdvice("data");
    // All that Graphic::Init raises where it has no device, or no shaders for one.
    const bool noDevice = typeid(exception) == typeid(std::exception) && !Graphic::LiveDevice();
    if (noDevice && !IsFolder("data/shaders"))
        return FilesAdvice("data/shaders");
    if (noDevice)
        return "This machine gave the game nothing to draw with. It needs OpenGL 4.5: install the "
               "current driver of your graphics card, and start the game at the machine itself.";
    if (dynamic_cast<const std::bad_alloc*>(&exception))
        return "The machine has no memory left. Close other programs and start the game again.";
    return "Start the game again. If this comes back, it is the game's fault and not yours: send "
           "the page.";
}

Fault CurrentFault() {
    const std::string type = TypeName();
    try {
        if (std::current_exception())
            throw;
    } catch (const std::exception& exception) {
        return {type, exception.what(), AdviceFor(exception)};
    } catch (...) { // of a type of the game's own, which the page names
    }
    return {type, "an exception without a text", AdviceFor(std::bad_exception())};
}

/// As addresses in their files, which who made the game turns into lines of source.
std::string Calls() {
    std::array<void*, 48> frames{};
    const int count = backtrace(frames.data(), static_cast<int>(frames.size()));
    char** const names = backtrace_symbols(frames.data(), count);
    std::string calls;
    for (int i = 0; names && i < count; ++i)
        calls += std::string("    ") + names[i] + "\n";
    std::free(static_cast<void*>(names)); // NOLINT(cppcoreguidelines-no-malloc): as above
    return calls;
}

std::string System() {
    utsname name{};
    uname(&name);
    return std::string(name.sysname) + " " + name.release + " " + name.machine;
}

std::string FileName(const std::string& game) {
    std::string name;
    for (const char c : game)
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '-';
    return (name.empty() ? "game" : name) + "-crash.txt";
}

/// What a player reads; the rest of the page is for who made the game.
std::string Summary(const CrashPage& details, const Fault& fault) {
    std::string text = (details.game.empty() ? "The game" : details.game) +
                       " has stopped.\n\n    " + fault.text + "\n\nWhat to do\n\n" + fault.advice +
                       "\n";
    if (!details.contact.empty())
        text += "\nWhat to send\n\nThis page" +
                (details.recording.empty()
                     ? std::string()
                     : ", and the recording of what you did, " + details.recording + ",") +
                " to " + details.contact + "\n";
    return text;
}

std::string Particulars(const CrashPage& details, const Fault& fault) {
    std::error_code ignored;
    return "\nParticulars\n\n    game       " + details.game + "\n    engine     Vorn " +
           VORN_VERSION + "\n    exception  " + fault.type + "\n    program    " +
           fs::read_symlink("/proc/self/exe", ignored).string() + "\n    folder     " +
           fs::current_path(ignored).string() + "\n    recording  " +
           (details.recording.empty() ? "only by VORN_RECORD=FILE in the environment"
                                      : details.recording) +
           "\n    system     " + System() + "\n\nCalls\n\n" + Calls();
}

/// The path of the file; empty where none can be written.
std::string WriteFile(const std::string& name, const std::string& text) {
    std::error_code ignored;
    for (const fs::path& folder : {fs::current_path(ignored), fs::temp_directory_path(ignored)}) {
        std::ofstream file(folder / name, std::ios::binary);
        file << text;
        file.close();
        if (file)
            return (folder / name).string();
    }
    return {};
}

/// The box of the desktop breaks no lines, and would become wider than the screen.
std::string Wrapped(std::string text) {
    constexpr std::size_t Width = 84;
    std::size_t start = 0, blank = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            start = i + 1;
            continue;
        }
        if (text[i] == ' ')
            blank = i;
        if (i - start >= Width && blank > start) {
            text[blank] = '\n';
            start = blank + 1;
        }
    }
    return text;
}

[[noreturn]] void OnTerminate() noexcept {
    // What goes wrong in here, or in another thread meanwhile, is not worth a second page.
    static std::atomic_flag busy;
    if (busy.test_and_set())
        std::abort();
    const CrashPage& details = Details();
    const Fault fault = CurrentFault();
    std::string summary = Summary(details, fault);
    const std::string page = summary + Particulars(details, fault);
    const std::string file = WriteFile(FileName(details.game), page);
    std::fputs(page.c_str(), stderr);
    if (!file.empty()) {
        std::fprintf(stderr, "\nThis page is in %s\n", file.c_str());
        summary += "\nOK opens the whole page, to be copied. It is in\n" + file + "\n";
    }
    // Nothing can be selected in the box, and not every desktop has one (X11 needs its own old
    // fonts): the desktop's editor has it all.
    MessageBoxA(Engine::mWnd, Wrapped(summary).c_str(), details.game.c_str(), MB_OK | MB_ICONERROR);
    if (!file.empty())
        ShellExecuteA(Engine::mWnd, "open", file.c_str(), nullptr, nullptr, SW_SHOWDEFAULT);
    std::abort();
}

} // namespace

void ShowCrashPage(CrashPage page) {
    Details() = std::move(page);
    std::set_terminate(OnTerminate);
}

} // namespace Vorn
