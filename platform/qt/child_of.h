#pragma once

#include <memory>
#include <utility>

namespace kestrune {

// Makes a widget that its parent owns. The parent is the constructor's last argument.
template <typename Widget, typename Parent, typename... Arguments>
Widget& child_of(Parent& parent, Arguments&&... arguments) {
    auto made = std::make_unique<Widget>(std::forward<Arguments>(arguments)..., &parent);
    return *made.release(); // NOLINT(bugprone-unused-return-value): the parent took it
}

} // namespace kestrune
