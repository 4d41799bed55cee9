#include "profile/Profile.h"

#include <algorithm>

namespace {

/** A name in which no semicolon ends it, and no newline the stack. */
std::string frameOf(std::string name) {
    std::replace(name.begin(), name.end(), ';', ',');
    std::replace(name.begin(), name.end(), '\n', ' ');
    return name;
}

} // namespace

std::string foldedStacks(const Profile& profile) {
    const auto& tree = profile.data.tree();
    std::string text;
    for (const Profiler::Node& node : tree) {
        std::vector<std::string> frames;
        frames.push_back(frameOf(profile.nameOf(node.routine)));
        for (std::size_t above = node.parent; above != Profiler::NONE; above = tree[above].parent) {
            frames.push_back(frameOf(profile.nameOf(tree[above].routine)));
        }
        for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
            text += *frame + (frame + 1 == frames.rend() ? " " : ";");
        }
        text += std::to_string(node.own.nanoseconds) + "\n";
    }
    return text;
}
