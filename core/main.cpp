#include "core/Console.hpp"
#include "core/SessionWiring.hpp"
#include "core/StringFactory.hpp"
#include "welcome/WelcomeWindow.hpp"

int main(int argc, char** argv) {
    // The catalogue lives in the text layer; every Frame asks for it through the core.
    Lanyx::SetStringFactorySource(&Lanyx::GetStringFactory);
    return Lanyx::RunConsole(argc, argv, [] {
        return std::make_unique<Lanyx::WelcomeWindow>(Lanyx::DefaultSessionHooks());
    });
}
