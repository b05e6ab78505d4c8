// The network forms' world: one simulated host for the program, the off-screen screen with the
// keypad on (arrows arrive as xterm sequences), and a catalogue that answers "#<id>" and notes
// every id asked for, so that a test sees which rule a refusal named.
#pragma once
#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "CursesScreen.hpp"
#include "HostRoot.hpp"
#include "core/StringFactory.hpp"

namespace Lanyx::Testing {

class RecordingFactory : public StringFactory {
public:
    const char* GetString(uint32_t id) override {
        asked.push_back(id);
        texts.push_back("#" + std::to_string(id));
        return texts.back().c_str();
    }
    bool Asked(uint32_t id) const { return std::ranges::count(asked, id) > 0; }
    std::vector<uint32_t> asked;

private:
    std::deque<std::string> texts; // stable addresses
};

inline RecordingFactory& Recorded() {
    static RecordingFactory factory;
    return factory;
}

inline LanyxTest::ProgramHost* const networkHost = LanyxTest::AddProgramHost("default");
inline CursesScreen* const networkScreen = AddCursesScreen();

inline constexpr const char* kDown = "\x1bOB";

class NetworkForm : public ::testing::Test {
protected:
    void SetUp() override {
        SetStringFactorySource([](const std::string&) -> StringFactory* { return &Recorded(); });
        keypad(stdscr, true);
        set_escdelay(20);
        networkHost->Reset();
        Recorded().asked.clear();
    }
    LanyxTest::HostRoot& Host() { return networkHost->Host(); }
};

} // namespace Lanyx::Testing
