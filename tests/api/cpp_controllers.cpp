// A C++ host holding controllers as qrx::Controller objects (qrx_host.hpp):
// qrx-sim --count 2 listens on the address given and the next one.
//
// Usage: cpp_controllers <first address>   (exit status 0 when every check held)

#include "qrx_host.hpp"
#include "host_checks.h"

#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

static_assert(!std::is_copy_constructible_v<qrx::Controller> && !std::is_copy_assignable_v<qrx::Controller>,
              "a controller is closed once: no copies");
static_assert(std::is_nothrow_move_constructible_v<qrx::Controller> && std::is_move_assignable_v<qrx::Controller>,
              "a controller moves");

int main(int argc, char **argv)
{
    const std::string first = argc > 1 ? argv[argc - 1] : "127.0.35.1";
    const std::string second = nextAddress(first, 1);

    std::optional<qrx::Controller> a;
    a.emplace(first);
    qrx::Controller b(second, std::chrono::milliseconds(4000));
    CHECK(a->linkUp() && b.linkUp());
    // A read then ends on the reply to its own query, not on a start-up report.
    a->setMatchedReplies(true);
    b.setMatchedReplies(true);
    CHECK(a->timeout() == std::chrono::milliseconds(3000) && b.timeout() == std::chrono::milliseconds(4000));

    a->setGlobalVariable("GI001", 5);
    b.setGlobalVariable("GI001", 7);
    CHECK(a->globalVariable("GI001") == 5.0);
    CHECK(b.globalVariable("GI001") == 7.0);

    // Moving hands the controller over; the one moved from holds none.
    qrx::Controller moved(std::move(b));
    CHECK(!b.linkUp() && b.handle() == nullptr);
    CHECK(moved.globalVariable("GI001") == 7.0);

    // Closing one leaves the other.
    a.reset();
    const qrx::Axes position = moved.position(qrx::Coord::Joint);
    for (const double axis : position)
        CHECK(std::isfinite(axis));
    CHECK(moved.globalVariable("GI001") == 7.0);

    // Move assignment closes what the target held.
    qrx::Controller again(first);
    again.setMatchedReplies(true);
    qrx_controller *const handleOfAgain = again.handle();
    again = std::move(moved);
    CHECK(qrxc_link_up(handleOfAgain) == 0);
    CHECK(again.globalVariable("GI001") == 7.0);

    bool refused = false;
    try {
        qrx::Controller nobody(nextAddress(first, 2), std::chrono::milliseconds(300));
    } catch (const qrx::ConnectionRefused &) {
        refused = true;
    }
    CHECK(refused);

    if (failures.load())
        std::fprintf(stderr, "%d check(s) failed\n", failures.load());
    return failures.load() ? 1 : 0;
}
