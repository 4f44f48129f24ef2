"""Many controllers in one process: each Robot is a controller of its own,
usable from several threads at once (qrx-sim --count 2 serves two)."""
from __future__ import annotations

import threading
from typing import Iterator, List, Tuple

import pytest

import qrx_host
from conftest import Sim, next_address


@pytest.fixture
def two_sims() -> Iterator[Tuple[str, str]]:
    first, second = next_address(), next_address()
    assert first.rsplit(".", 1)[0] == second.rsplit(".", 1)[0]
    assert int(second.rsplit(".", 1)[1]) == int(first.rsplit(".", 1)[1]) + 1, "two consecutive addresses"
    simulator = Sim(first, options=["--count", "2"])
    simulator.start()
    yield first, second
    simulator.stop()
    simulator.log.unlink()


def test_two_robots_keep_their_own_values(two_sims: Tuple[str, str]) -> None:
    first, second = two_sims
    a = qrx_host.Robot(first, timeout=5.0)
    b = qrx_host.Robot(second, timeout=3.0)
    assert a.connected and b.connected
    assert (a.timeout, b.timeout) == (5.0, 3.0)
    a.set_global_variable("GI001", 5)
    b.set_global_variable("GI001", 7)
    assert a.global_variable("GI001") == 5
    assert b.global_variable("GI001") == 7
    a.close()
    assert not a.connected
    with pytest.raises(qrx_host.NotConnected):
        a.global_variable("GI001")
    assert len(b.position()) == 6
    assert b.global_variable("GI001") == 7
    # A closed Robot connects again, to a controller of its own.
    a.connect()
    assert a.global_variable("GI001") == 5
    a.close()
    b.close()


def test_robots_used_from_several_threads(two_sims: Tuple[str, str]) -> None:
    robots = [qrx_host.Robot(address, timeout=5.0) for address in two_sims]
    for number, robot in enumerate(robots):
        robot.set_global_variable("GI002", 10 + number)
    seen: List[Tuple[int, float]] = []
    errors: List[BaseException] = []
    lock = threading.Lock()

    def read(number: int) -> None:
        try:
            for _ in range(10):
                value = robots[number].global_variable("GI002")
                with lock:
                    seen.append((number, value))
        except BaseException as error:  # handed to the test's thread
            errors.append(error)

    threads = [threading.Thread(target=read, args=(i % 2,)) for i in range(6)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(60)
    assert not errors
    assert len(seen) == 60
    assert all(value == 10 + number for number, value in seen)
    for robot in robots:
        robot.close()


def test_nobody_answers_within_the_timeout() -> None:
    with pytest.raises(qrx_host.ConnectionRefused):
        qrx_host.Robot(next_address(), timeout=0.3)
