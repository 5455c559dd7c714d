#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace kestrune {

// An object whose procedures without arguments can be called by name.
class NamedCalls {
public:
    // A later call of the same name replaces the earlier one.
    void define(std::string name, std::function<void()> call) { calls_[std::move(name)] = std::move(call); }
    // False when there is no procedure of that name.
    [[nodiscard]] bool call(std::string_view name) const {
        const auto found = calls_.find(name);
        if (found == calls_.end())
            return false;
        found->second();
        return true;
    }

private:
    std::map<std::string, std::function<void()>, std::less<>> calls_;
};

// Forwards a parameterless call by name to another object. It keeps a reference to the object, and does
// nothing until it is armed.
class clsForward {
public:
    void Set_Destination(std::shared_ptr<const NamedCalls> target, std::string_view method) {
        oInObject = std::move(target);
        sInMethod = method;
        armed_ = oInObject != nullptr;
    }
    // A method that the target does not have is not called; nothing is reported.
    void My_Default_Method() const {
        if (armed_)
            static_cast<void>(oInObject->call(sInMethod));
    }
    void operator()() const { My_Default_Method(); }

private:
    std::shared_ptr<const NamedCalls> oInObject;
    std::string sInMethod;
    bool armed_ = false;
};

} // namespace kestrune
