#include "fuzz/targets.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace kestrune::fuzz {

void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

namespace {

namespace fs = std::filesystem;

constexpr int mutated_inputs = 10000; // of each target
constexpr std::size_t longest_input = 4096;

// The same inputs in every run; each is told by its number alone.
class Mutations {
public:
    explicit Mutations(std::vector<std::string> first) : first_(std::move(first)) {}

    std::string input(int number) {
        random_.seed(static_cast<unsigned>(number));
        std::string text = any_first();
        for (std::size_t steps = up_to(5) + 1; steps > 0; --steps)
            mutate(text);
        if (text.size() > longest_input)
            text.resize(longest_input);
        return text;
    }

private:
    std::size_t up_to(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(random_);
    }
    const std::string& any_first() { return first_[up_to(first_.size() - 1)]; }
    std::string any_slice(const std::string& text) {
        const std::size_t from = up_to(text.size());
        return text.substr(from, up_to(40));
    }

    void mutate(std::string& text) {
        constexpr std::array<std::string_view, 20> tokens{
            "<",      ">",   "</", "\"",   "'",  "&", "=",        "%",    "+",
            "/",      "?",   " ",  "\r\n", "\n", "|", "\xC3\xA9", "\xE9", "\xF0\x9F\x98\x80",
            "&nbsp;", "<!--"};
        const std::size_t at = up_to(text.size());
        switch (up_to(7)) {
        case 0:
            if (at < text.size())
                text[at] = static_cast<char>(up_to(255));
            break;
        case 1:
            text.insert(at, 1, static_cast<char>(up_to(255)));
            break;
        case 2:
            text.erase(at, up_to(20));
            break;
        case 3:
            text.insert(at, any_slice(text));
            break;
        case 4:
            text.insert(at, any_slice(any_first()));
            break;
        case 5:
            text = text.substr(0, at) + any_slice(any_first());
            break;
        case 6:
            if (at < text.size())
                text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^ 0x20U);
            break;
        default:
            text.insert(at, tokens[up_to(tokens.size() - 1)]);
        }
    }

    std::vector<std::string> first_;
    std::mt19937 random_;
};

class Fuzz : public testing::TestWithParam<Target> {
protected:
    static std::vector<std::string> first_inputs() {
        const fs::path folder = fs::path(KESTRUNE_SOURCE_DIR) / "fuzz" / "corpus" / GetParam().name;
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(folder))
            files.push_back(entry.path());
        std::sort(files.begin(), files.end());
        std::vector<std::string> inputs;
        inputs.reserve(files.size());
        for (const fs::path& file : files)
            inputs.push_back(bytes_of(file.string()));
        return inputs;
    }
    // False when a rule is broken; the test says which and for what input.
    static bool keeps_the_rules(const std::string& input, const std::string& which) {
        try {
            GetParam().run(input);
            return true;
        } catch (const std::exception& broken) {
            ADD_FAILURE() << broken.what() << ", but not for " << which << ": "
                          << testing::PrintToString(input);
            return false;
        }
    }
};

TEST_P(Fuzz, EveryRuleHoldsForTheFirstInputs) {
    const auto inputs = first_inputs();
    ASSERT_FALSE(inputs.empty());
    EXPECT_TRUE(keeps_the_rules("", "the empty input"));
    for (const std::string& input : inputs)
        EXPECT_TRUE(keeps_the_rules(input, "a first input"));
}

TEST_P(Fuzz, EveryRuleHoldsForMutatedInputs) {
    Mutations mutations{first_inputs()};
    for (int number = 1; number <= mutated_inputs; ++number) {
        if (!keeps_the_rules(mutations.input(number), "mutation " + std::to_string(number)))
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(Readers, Fuzz, testing::ValuesIn(targets()),
                         [](const testing::TestParamInfo<Target>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
} // namespace kestrune::fuzz
