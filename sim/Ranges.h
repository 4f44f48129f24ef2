#pragma once
// The value ranges of the simulated controller, in one place: the command
// handlers refuse what lies outside them, and qrx-sim --help prints them.

namespace qrxsim {

struct ValueRange
{
    double min;
    double max;
    constexpr bool holds(double v) const { return v >= min && v <= max; }
};

namespace ranges {

inline constexpr ValueRange kMode{0, 2};          // 0 teach, 1 remote, 2 run
inline constexpr ValueRange kCoordinate{0, 3};    // 0 joint, 1 Cartesian, 2 tool, 3 user
inline constexpr ValueRange kJogSpeed{1, 103};    // percent 1..100, jog-step sizes 101..103
inline constexpr ValueRange kDeadman{0, 1};
inline constexpr ValueRange kMoveSpeed{1, 100};   // "vel" of a move, percent
inline constexpr ValueRange kAccDec{1, 100};      // "acc", "dec" of a move, percent
inline constexpr ValueRange kPort{1, 16};         // digital and analog ports
inline constexpr ValueRange kDigital{0, 1};
inline constexpr ValueRange kAnalog{-10, 10};     // volts
// Speeds of queued moves by unit: 0 cm/s, 1 mm/s, 2 percent. 100 % is the
// fastest axis speed, and so are 1000 mm/s (100 cm/s) and more.
inline constexpr ValueRange kQueueSpeed[3] = {{0.1, 1000}, {1, 10000}, {1, 100}};
inline constexpr double kFullSpeedMmPerS = 1000.0;

// Axis limits: robot axes 1..7 (degrees), synchronous axes 1..5 (units).
inline constexpr ValueRange kRobotAxes[7] = {{-170, 170}, {-135, 135}, {-170, 170}, {-190, 190},
                                            {-135, 135},  {-360, 360}, {-360, 360}};
inline constexpr ValueRange kSyncAxes[5] = {{-1000, 1000}, {-1000, 1000}, {-1000, 1000}, {-1000, 1000},
                                           {-1000, 1000}};

} // namespace ranges
} // namespace qrxsim
