#pragma once
// A command to one controller, checked and ready to send, and the check that
// makes one from a request: verb and JSON payload in, a command or the
// problem in plain words out. Pure. Payloads (members, all required unless
// marked):
//   servo  {"on": true|false}
//   mode   {"mode": 0 teach | 1 remote | 2 run}
//   coord  {"coord": 0 joint | 1 Cartesian | 2 tool | 3 user}
//   speed  {"speed": 1..100}
//   move   {"kind": "joint"|"linear", "pos": [6 numbers], "speed": 1..100,
//           "coord": 0..3 (joint 0, linear 1), "acc": 1..100 (50), "dec": 1..100 (50)}
//   io     {"dout": 1..16, "value": 0|1} or {"aout": 1..16, "value": number}
//   var    {"name": "GBnnn"|"GInnn"|"GDnnn", "value": 0|1, integer, number}
//   job    {"action": "run", "name": "JOB"} or {"action": "pause"|"continue"|"stop"}

#include <array>
#include <cstddef>
#include <string>

namespace qrxbridge {

struct Command
{
    enum Verb { Servo, Mode, Coord, Speed, Move, Io, Var, Job };
    enum JobAction { Run, Pause, Continue, Stop };

    Verb verb = Servo;
    bool on = false;             // servo
    int value = 0;               // mode, coord, speed; move: speed
    bool linear = false;         // move
    std::array<double, 6> pos{}; // move
    int coord = 0, acc = 50, dec = 50; // move
    bool analog = false;         // io: aout rather than dout
    int port = 0;                // io
    double number = 0.0;         // io, var
    std::string name;            // var, job
    JobAction action = Run;      // job
};

// Payloads longer than this are refused unread.
constexpr std::size_t kMaxPayload = 4096;

struct CheckedCommand
{
    Command command;
    std::string error; // empty when command is good
};

CheckedCommand checkCommand(const std::string &verb, const std::string &payload);

} // namespace qrxbridge
