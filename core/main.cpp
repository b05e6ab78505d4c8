#include "core/Console.hpp"
#include "core/KeyTestWindow.hpp"

int main(int argc, char** argv)
{
    return Lanyx::RunConsole(argc, argv, [] { return std::make_unique<Lanyx::KeyTestWindow>(); });
}
