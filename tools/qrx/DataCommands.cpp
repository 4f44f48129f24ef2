// io, var, pos: controller data read and written by name.

#include "Bound.h"
#include "Commands.h"
#include "Controller.h"
#include "Link.h"
#include "qrx_host.h"

#include <algorithm>
#include <array>

namespace qrxcli {

namespace {

constexpr std::size_t kIoCount = 16;
constexpr std::size_t kPositionCount = 14;
constexpr std::size_t kAxes = 7;

using IoReader = void (*)(double *);

struct IoKind
{
    const char *name;
    IoReader read;
};

const IoKind kIoKinds[] = {{"dout", get_dout}, {"din", get_din}, {"aout", get_aout}, {"ain", get_ain}};

std::vector<double> readIo(const IoKind &kind)
{
    const IoReader read = kind.read;
    const auto values = answered<std::array<double, kIoCount>>(std::string("the ") + kind.name + " values", [read] {
        std::array<double, kIoCount> out{};
        read(out.data());
        return out;
    });
    return toVector(values.data(), values.size());
}

const IoKind &ioKind(const std::string &name)
{
    for (const IoKind &kind : kIoKinds)
        if (name == kind.name)
            return kind;
    fail(ExitUsage, "the IO kind must be dout, din, aout or ain, not \"" + name + "\"");
}

} // namespace

void runIo(const Args &args)
{
    const char *synopsis = "io get dout|din|aout|ain | io set dout|aout PORT VALUE";
    const std::string verb = args.word(0, "get or set");
    if (verb == "get") {
        args.expect(2, 2, synopsis);
        const IoKind &kind = ioKind(args.word(1, "the IO kind"));
        goOnline();
        print(Report().numbers(kind.name, readIo(kind)));
        return;
    }
    if (verb != "set")
        fail(ExitUsage, std::string("usage: qrx ") + synopsis);
    args.expect(4, 4, synopsis);
    const IoKind &kind = ioKind(args.word(1, "the IO kind"));
    const long port = Args::toInteger(args.word(2, "PORT"), "PORT");
    if (port < 1 || port > long(kIoCount))
        fail(ExitUsage, "PORT must be 1..16");
    const std::string name = kind.name;
    if (name == "dout") {
        const long status = Args::toInteger(args.word(3, "VALUE"), "VALUE");
        if (status != 0 && status != 1)
            fail(ExitUsage, "a digital output is 0 or 1");
        goOnline();
        sendChecked([port, status] { set_dout(int(port), int(status)); });
    } else if (name == "aout") {
        const double value = Args::toNumber(args.word(3, "VALUE"), "VALUE");
        goOnline();
        sendChecked([port, value] { set_aout(int(port), value); });
    } else {
        fail(ExitUsage, "only dout and aout can be set");
    }
    print(Report().numbers(kind.name, readIo(kind)));
}

void runVar(const Args &args)
{
    const char *synopsis = "var get NAME | var set NAME VALUE";
    const std::string verb = args.word(0, "get or set");
    if (verb != "get" && verb != "set")
        fail(ExitUsage, std::string("usage: qrx ") + synopsis);
    args.expect(verb == "get" ? 2 : 3, verb == "get" ? 2 : 3, synopsis);
    const std::string name = args.word(1, "NAME");
    const bool digits = name.size() == 5 && std::all_of(name.begin() + 2, name.end(), [](char c) {
                            return c >= '0' && c <= '9';
                        });
    if (!digits || (name.compare(0, 2, "GI") != 0 && name.compare(0, 2, "GD") != 0 && name.compare(0, 2, "GB") != 0))
        fail(ExitUsage, "NAME is GI, GD or GB and three digits, e.g. GI001");
    const double value = verb == "set" ? Args::toNumber(args.word(2, "VALUE"), "VALUE") : 0.0;
    goOnline();
    if (verb == "set")
        sendChecked([name, value] { set_global_variant(name.c_str(), value); });
    const double read = answered<double>("the variable " + name, [name] { return get_global_variant(name.c_str()); });
    print(Report().text("name", name).number("value", read));
}

void runPos(const Args &args)
{
    const char *synopsis = "pos get NAME | pos set NAME X1 .. X7 [S1 .. S7] [--coord C]";
    const std::string verb = args.word(0, "get or set");
    if (verb == "set") {
        args.expect(2 + kAxes, 2 + 2 * kAxes, synopsis);
        std::array<double, kAxes> robotAxes{};
        std::array<double, kAxes> syncAxes{};
        for (std::size_t i = 2; i < args.count(); ++i) {
            const double v = Args::toNumber(args.word(i, "a value"), "a value");
            (i - 2 < kAxes ? robotAxes[i - 2] : syncAxes[i - 2 - kAxes]) = v;
        }
        const int coord = int(choice(args.option("coord", "joint"), coordNames(), "--coord"));
        const std::string name = args.word(1, "NAME");
        goOnline();
        sendChecked([name, coord, robotAxes, syncAxes]() mutable {
            set_GPosition(name.c_str(), coord, robotAxes.data(), syncAxes.data());
        });
    } else if (verb == "get") {
        args.expect(2, 2, synopsis);
        goOnline();
    } else {
        fail(ExitUsage, std::string("usage: qrx ") + synopsis);
    }
    const std::string name = args.word(1, "NAME");
    const auto values = answered<std::array<double, kPositionCount>>("the position " + name, [name] {
        std::array<double, kPositionCount> out{};
        get_GPosition(name.c_str(), out.data());
        return out;
    });
    print(Report().text("name", name).numbers("values", toVector(values.data(), values.size())));
}

} // namespace qrxcli
