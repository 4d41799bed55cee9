#include "xslt/InputAccess.h"
#include "xslt/Uri.h"

#include <utility>

namespace vexa {

Input::Input(std::shared_ptr<Data> data) noexcept : m_data(std::move(data)) {}

Input Input::file(const std::filesystem::path& path) {
    auto data = std::make_shared<Data>();
    data->kind = Data::Kind::File;
    data->uri = fileUri(path);
    data->path = path;
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
