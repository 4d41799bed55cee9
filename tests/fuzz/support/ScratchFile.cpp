#include "ScratchFile.h"

#include "Check.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (fs::temp_directory_path() / "vexa-fuzz-XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr, "there is a folder for temporary files");
        path = name;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }

    fs::path path;
};

} // namespace

std::string scratchFile(const std::string& name, std::string_view content) {
    static const ScratchFolder folder;
    const std::string file = (folder.path / name).string();
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    require(stream.flush().good(), "a temporary file can be written");
    return file;
}
