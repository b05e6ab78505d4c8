// Key codes the screens act on: the curses codes, named once.
#pragma once

namespace Lanyx::Keys {

constexpr int Backspace = 8;
constexpr int Tab = 9;
constexpr int Enter = 10;
constexpr int Escape = 27;
constexpr int Delete127 = 127; // the byte, before the key table maps it
constexpr int Down = 258;
constexpr int Up = 259;
constexpr int Left = 260;
constexpr int Right = 261;
constexpr int Home = 262;
constexpr int CursesBackspace = 263;
constexpr int F1 = 265;
constexpr int F2 = 266;
constexpr int F3 = 267;
constexpr int F4 = 268;
constexpr int F5 = 269;
constexpr int F6 = 270;
constexpr int F7 = 271;
constexpr int F8 = 272;
constexpr int F9 = 273;
constexpr int F10 = 274;
constexpr int F11 = 275;
constexpr int F12 = 276;
constexpr int DeleteChar = 330;
constexpr int InsertChar = 331;
constexpr int PageDown = 338;
constexpr int PageUp = 339;
constexpr int End = 360;
constexpr int Resize = 410;

// F(1) .. F(12).
constexpr int F(int n) {
    return F1 + n - 1;
}

} // namespace Lanyx::Keys
