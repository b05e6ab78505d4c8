#include <cstdlib>

#include "core/Console.hpp"
#include "core/KeyTestWindow.hpp"
#include "core/StringFactory.hpp"
#include "welcome/WelcomeWindow.hpp"

int main(int argc, char** argv)
{
    // The catalogue lives in the text layer; every Frame asks for it through the core.
    Lanyx::SetStringFactorySource(&Lanyx::GetStringFactory);
    // The end-to-end tests of the input loop drive the bare key test frame instead.
    const bool keyTest = std::getenv("LANYX_KEY_TEST_FRAME") != nullptr;
    return Lanyx::RunConsole(argc, argv, [keyTest]() -> std::unique_ptr<Lanyx::Frame> {
        if (keyTest)
            return std::make_unique<Lanyx::KeyTestWindow>();
        return std::make_unique<Lanyx::WelcomeWindow>();
    });
}
