// The text of qrx-bridge --help: the options and the topics.

#include "Options.h"

namespace qrxbridge {

std::string helpText()
{
    return R"(Usage: qrx-bridge --broker HOST[:PORT] --cell CELL --id ID --controller NAME=IP[:PORT] ...
       qrx-bridge --config FILE.json [options]

Puts the controllers of one cell on an MQTT 5 broker: their state and
messages out, commands in only where allowed.

Options:
  --broker HOST[:PORT]      the broker (port 1883, 8883 with --tls-ca)
  --cell CELL               the cell: the topic level after qrx/
  --id ID                   this bridge's name among the cell's bridges
  --controller NAME=IP[:PORT]
                            a controller (port 6001); repeat for more
  --config FILE.json        the same fields from a file: {"broker": "host:1883",
                            "cell": "...", "id": "...", "controller": ["r1=10.0.0.5", ...],
                            "username", "password-file", "tls-ca", "rate",
                            "allow-commands": true|false, "queue"}; options given
                            here replace its values, --controller adds to its list
  --username USER --password-file FILE
                            log in to the broker (the password is the file's first line)
  --tls-ca FILE             TLS to the broker, trusting this CA certificate
  --rate HZ                 state messages per controller and second, at most (2)
  --allow-commands          run commands (without it every command is refused)
  --queue N                 commands that may wait per controller before "busy" (8)
  --help                    this text

Names (CELL, ID, NAME) are 1 to 64 characters of A-Z a-z 0-9 _ . -

Topics:
  qrx/CELL/NAME/state       retained JSON, on change and at most --rate a second:
                            {"link", "servo", "mode", "coord", "speed", "running",
                            "line", "tool", "type", "joints" [6], "cartesian" [6],
                            "time" (UTC, ISO 8601)}; "link": false within 10 s of a lost link
  qrx/CELL/NAME/alarm       QoS 1, not retained: each error, warning and info message
                            {"level": "error"|"warning"|"info", "text", "time"}
                            (text in the library's language; QRX_LANG=en for English)
  qrx/CELL/bridges/ID       retained "online"; "offline" on a clean stop and as the will
  qrx/CELL/NAME/cmd/VERB    MQTT 5 requests with a response topic and correlation data;
                            the answer, on the response topic with the same correlation
                            data, comes when the controller has taken the command:
                            {"ok": true}, or {"ok": false, "error": "..."} naming the
                            problem or the controller's refusal.
                            Requests without a response topic are ignored, retained
                            ones refused. Payloads (at most 4096 bytes):
    servo  {"on": true|false}
    mode   {"mode": 0 teach | 1 remote | 2 run}
    coord  {"coord": 0 joint | 1 Cartesian | 2 tool | 3 user}
    speed  {"speed": 1..100}
    move   {"kind": "joint"|"linear", "pos": [6 numbers], "speed": 1..100,
            "coord": 0..3, "acc": 1..100, "dec": 1..100}   (coord, acc, dec optional)
    io     {"dout": 1..16, "value": 0|1} or {"aout": 1..16, "value": number}
    var    {"name": "GI003", "value": 42}   (GB: 0|1, GI: whole number, GD: number)
    job    {"action": "run", "name": "JOB"} or {"action": "pause"|"continue"|"stop"}

Example:
  mosquitto_rr -V mqttv5 -t qrx/cell1/r1/cmd/speed -e replies/me -m '{"speed": 20}'
)";
}

} // namespace qrxbridge
