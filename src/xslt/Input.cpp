#include "xslt/InputAccess.h"
#include "xslt/Uri.h"

#include <vexa/xslt/Error.h>

#include <system_error>
#include <utility>

namespace vexa {

Input::Data& InputAccess::data(const Input& input) {
    if (!input.m_data) {
        throw Error(ErrorKind::Usage, "the input is empty");
    }
    return *input.m_data;
}

Input::Input(std::shared_ptr<Data> data) noexcept : m_data(std::move(data)) {}

Input Input::file(const std::filesystem::path& path) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::File;
    // Without a working directory the path stays empty, and is refused when it is opened.
    std::error_code ignored;
    data->path = std::filesystem::absolute(path, ignored);
    data->uri = fileUri(data->path);
    return Input(std::move(data));
}

Input Input::text(std::string text, std::string uri) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::Text;
    data->uri = std::move(uri);
    data->ownText = std::move(text);
    data->text = data->ownText;
    return Input(std::move(data));
}

Input Input::view(std::string_view text, std::string uri) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::Text;
    data->uri = std::move(uri);
    data->text = text;
    return Input(std::move(data));
}

Input Input::stream(std::istream& stream, std::string uri) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::Stream;
    data->uri = std::move(uri);
    data->stream = &stream;
    return Input(std::move(data));
}

Input Input::uri(std::string uri) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::Uri;
    data->uri = std::move(uri);
    return Input(std::move(data));
}

} // namespace vexa
