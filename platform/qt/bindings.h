#pragma once

#include "platform/control.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace kestrune {

// What ties controls to their widgets. Nothing of it is left once `release` was called: controls notify
// nobody and widgets call no control, though the widgets may live on for a moment.
class Bindings {
public:
    Bindings() = default;
    ~Bindings() { release(); }
    Bindings(const Bindings&) = delete;
    Bindings& operator=(const Bindings&) = delete;
    Bindings(Bindings&&) = delete;
    Bindings& operator=(Bindings&&) = delete;

    // Runs `apply` now and after each change of the object, which must outlive the binding.
    void observe(Observed& object, std::function<void()> apply) {
        apply();
        object.Changed = std::move(apply);
        observed_.push_back(&object);
    }

    // The receiver that connections from widgets to controls name as their context.
    [[nodiscard]] QObject* context() const { return context_.get(); }

    // Run at release, for what is tied in another way.
    void at_release(std::function<void()> call) { at_release_.push_back(std::move(call)); }

    void release() {
        for (Observed* object : observed_)
            object->Changed = nullptr;
        observed_.clear();
        context_.reset();
        for (const auto& call : at_release_)
            call();
        at_release_.clear();
    }

private:
    std::vector<Observed*> observed_;
    std::unique_ptr<QObject> context_ = std::make_unique<QObject>();
    std::vector<std::function<void()>> at_release_;
};

} // namespace kestrune
