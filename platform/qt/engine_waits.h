#pragma once

namespace kestrune {

// Knows of the waits for the user inside a call that the engine has made. While one is open the engine stands
// still, in all windows of its profile; so nothing that needs the engine may be waited for meanwhile, and no
// page may be blamed for not answering.
class EngineWaits {
public:
    // For as long as such a wait lasts.
    class Open {
    public:
        explicit Open(EngineWaits& waits) : waits_(waits) { ++waits_.open_; }
        ~Open() { --waits_.open_; }
        Open(const Open&) = delete;
        Open& operator=(const Open&) = delete;
        Open(Open&&) = delete;
        Open& operator=(Open&&) = delete;

    private:
        EngineWaits& waits_;
    };
    // For as long as the program waits for an answer of a page.
    class ForPage {
    public:
        explicit ForPage(EngineWaits& waits) : waits_(waits) { ++waits_.for_page_; }
        ~ForPage() { --waits_.for_page_; }
        ForPage(const ForPage&) = delete;
        ForPage& operator=(const ForPage&) = delete;
        ForPage(ForPage&&) = delete;
        ForPage& operator=(ForPage&&) = delete;

    private:
        EngineWaits& waits_;
    };

    [[nodiscard]] bool open() const { return open_ > 0; }
    // Whether the program is in the middle of something that a page's question would keep from ending: a
    // question or dialog of its own, or a wait for a page.
    [[nodiscard]] bool program_busy() const;
    // Serves events until no question or dialog of the program is open. False when the program ends instead.
    [[nodiscard]] bool wait_for_questions();

private:
    int open_ = 0;
    int for_page_ = 0;
};

} // namespace kestrune
