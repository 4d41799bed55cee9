// Shows errors as a compiler does, with the line of the stylesheet and a caret:
//
//     errors orders.xml errors/*.xsl
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vexa/xslt.h>

namespace {

std::string read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// [kinds]
const char* advice(vexa::ErrorKind kind) {
    switch (kind) {
    case vexa::ErrorKind::Parse:
        return "not well-formed";
    case vexa::ErrorKind::Compile:
        return "wrong stylesheet or expression";
    case vexa::ErrorKind::Transform:
        return "failed while it ran";
    case vexa::ErrorKind::Terminated:
        return "the stylesheet ended the transform";
    case vexa::ErrorKind::Input:
        return "cannot be read";
    case vexa::ErrorKind::Output:
        return "cannot be written";
    case vexa::ErrorKind::Denied:
        return "not allowed by the access policy";
    case vexa::ErrorKind::Usage:
        return "defect of the host";
    default:
        return "other error";
    }
}
// [/kinds]

// [caret]
/** The line that an error names, and a caret below its column; empty if the error names no line. */
std::string sourceLine(const vexa::Location& where, const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    for (std::size_t number = 0; number < where.line; ++number) {
        std::getline(lines, line);
    }
    if (where.line == 0 || where.column == 0) {
        return line;
    }
    return line + '\n' + std::string(where.column - 1, ' ') + '^';
}
// [/caret]

void print(const vexa::Error& error, const std::string& text) {
    // [print]
    for (const vexa::Diagnostic& before : error.diagnostics()) {
        std::cout << before.where.uri << ':' << before.where.line << ": " << before.text << '\n';
    }
    std::cout << error.what() << '\n'
              << sourceLine(error.where(), text) << '\n'
              << advice(error.kind()) << "\n\n";
    // [/print]
}

void transform(const char* source, const std::filesystem::path& file) {
    const std::string text = read(file);
    try {
        // The file name is the URI that errors name.
        const auto input = vexa::Input::view(text, file.filename());
        vexa::Transformation run(vexa::Stylesheet::compile(input));
        std::cout << run.toString(vexa::Input::file(source));
    } catch (const vexa::Error& error) {
        print(error, text);
    }
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 2; i < argc; ++i) {
        transform(argv[1], argv[i]);
    }
    return EXIT_SUCCESS;
}
