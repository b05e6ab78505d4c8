// The console with the key test frame as its first screen, built like the product's program.
#include "KeyTestWindow.hpp"
#include "core/Console.hpp"
#include "core/StringFactory.hpp"

int main(int argc, char** argv)
{
    Lanyx::SetStringFactorySource(&Lanyx::GetStringFactory);
    return Lanyx::RunConsole(argc, argv, [] { return std::make_unique<Lanyx::KeyTestWindow>(); });
}
