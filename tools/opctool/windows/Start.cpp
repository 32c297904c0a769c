#include "Start.hpp"

#include <codecvt>
#include <filesystem>
#include <locale>
#include <string>
#include <vector>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace opctool {

namespace {

struct Utf8Arguments {
    std::vector<std::string> texts;
    std::vector<char*> pointers;
};

} // namespace

char** startProcess(int& count, char** arguments) {
    for (const int stream : {0, 1, 2})
        ::_setmode(stream, _O_BINARY);
    ::SetConsoleOutputCP(CP_UTF8);
    // The standard library converts a narrow text to a path by the locale.
    std::locale::global(std::locale(std::locale::classic(), new std::codecvt_utf8_utf16<wchar_t>));
    wchar_t** const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (wide == nullptr)
        return arguments;
    static Utf8Arguments all;
    for (int i = 0; i < count; ++i)
        all.texts.push_back(std::filesystem::path(wide[i]).u8string());
    ::LocalFree(static_cast<void*>(wide));
    for (std::string& text : all.texts)
        all.pointers.push_back(text.data());
    all.pointers.push_back(nullptr);
    return all.pointers.data();
}

} // namespace opctool
