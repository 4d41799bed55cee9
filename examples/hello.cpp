#include <iostream>
#include <vexa/TQXslTransformer.h>
#include <vexa/VEXAXslTransformer.h>

int main(int, char** files) { // source, stylesheet, output
    TQXslTransformer_Initialize(nullptr);
    int result = 0;
    {
        VEXAXslTransformer transformer;
        transformer.setStylesheetParam("title", "Orders");
        result = transformer.doTransform(files[1], files[2], files[3]);
        std::cerr << transformer.getLastError();
    }
    TQXslTransformer_Terminate(nullptr);
    return result == 0 ? 0 : 1;
}
