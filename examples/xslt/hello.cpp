#include <iostream>
#include <vexa/xslt.h>

int main(int, char** files) { // source, stylesheet, output
    try {
        const auto report = vexa::Stylesheet::compile(vexa::Input::file(files[2]));
        vexa::Transformation run(report);
        run.parameter("title", "May's \"orders\""); // any text
        run.to(vexa::Input::file(files[1]), vexa::Output::file(files[3]));
        return 0;
    } catch (const vexa::Error& error) {
        std::cerr << error.what() << '\n'; // URI:LINE:COLUMN: TEXT
        return 1;
    }
}
