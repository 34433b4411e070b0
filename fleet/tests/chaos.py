#!/usr/bin/env python3
"""Lets a fleet live through trouble and compares at the end; scripts/fleet-chaos.sh tells what it does.

usage: chaos.py [--build-dir DIR] [SECONDS]
"""
import argparse
import contextlib
import random
import re
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

from serving import Fleet, publish, wait_for

parser = argparse.ArgumentParser()
parser.add_argument("--build-dir", default="build/release")
parser.add_argument("seconds", nargs="?", type=float, default=60)
options = parser.parse_args()
build = Path(options.build_dir).resolve()
seed = random.randrange(1 << 32)
print(f"seed {seed}")
rng = random.Random(seed)
count = 6
names = [f"d{i}" for i in range(count)]
counts = {}


def start_broker():
    fleet.start_broker("allow_anonymous true", "max_queued_messages 100", "user root", "persistence true",
                       f"persistence_location {work}/", "autosave_interval 3")


def start_device(name):
    fleet.device(name, "--template", "climate", "--interval", "0.2", "--values", work / f"{name}.rec")


def publish_damage():
    """A foreign program that writes what it likes where it likes."""
    name = rng.choice(names)
    topic = rng.choice([f"{name}/value/climate/target", f"{name}/set/desk/climate/target", f"{name}/total",
                        f"{name}/answer/desk", f"{name}/claim", f"{name}/value/no/thing", "ghost/about",
                        f"{name}/set/desk/x/y"])
    payload = rng.choice([b"", b"FL\x02", b"FL\x02V" + rng.randbytes(40), b"FL\x02S" + rng.randbytes(40),
                          rng.randbytes(100), b"FL\x02R" + rng.randbytes(16)])
    with contextlib.suppress(OSError):
        publish(fleet.broker, f"fleet/{topic}", payload, retain=False)


class Controller:
    """The controller that lives through everything, and what it was asked and answered."""

    def __init__(self):
        self.log = work / "controller.log"
        self.process = fleet.start("controller", fleet.fleet_program, *fleet.at, "--name", "desk", stdin=subprocess.PIPE)
        self.asked = {name: [] for name in names}

    def say(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()

    def answered(self, name):
        text = self.log.read_text(errors="replace")
        return len(re.findall(rf"^{name} climate/target is set$", text, re.M))


def asking(controller, stop):
    """Sets one value after the other; each device has them in order."""
    number = 0
    while not stop.is_set():
        name = names[number % count]
        value = 50 + (number // count) % 250
        number += 1
        if controller.answered(name) + 3 > len(controller.asked[name]):
            controller.asked[name].append(value)
            controller.say(f"set {name} climate/target {value}")
        time.sleep(0.02)


def trouble():
    kind = rng.choices(["broker kill", "broker empty", "device kill", "device stop", "controller stop", "damage"],
                       [2, 1, 5, 2, 1, 6])[0]
    counts[kind] = counts.get(kind, 0) + 1
    name = rng.choice(names)
    if kind.startswith("broker"):
        fleet.stop("broker", signal.SIGKILL)
        if kind == "broker empty":
            (work / "mosquitto.db").unlink(missing_ok=True)
        time.sleep(rng.uniform(0, 2))
        start_broker()
    elif kind == "device kill":
        fleet.stop(name, signal.SIGKILL)
        time.sleep(rng.uniform(0, 0.5))
        start_device(name)
    elif kind.endswith("stop"):
        process = fleet.running["controller" if kind.startswith("controller") else name]
        process.send_signal(signal.SIGSTOP)
        time.sleep(rng.uniform(0.5, 4))
        process.send_signal(signal.SIGCONT)
    else:
        for _ in range(10):
            publish_damage()


failures = []
with Fleet(build / "fleet") as fleet:
    work = fleet.work
    start_broker()
    for name in names:
        start_device(name)
    controller = Controller()
    controller.say("wait")
    time.sleep(1.5)
    stop = threading.Event()
    asker = threading.Thread(target=asking, args=(controller, stop))
    asker.start()
    last = time.time() + options.seconds
    while time.time() < last:
        trouble()
        time.sleep(rng.uniform(0, 0.7))
        # A device ends if another process seems to have its name, which nobody but damage can bring about here.
        for name in names:
            if fleet.running[name].poll() is not None:
                failures.append(f"{name} ended with {fleet.running[name].returncode}")
                start_device(name)
    stop.set()
    asker.join()

    # All that was asked is answered, and then all devices end, so that what they have is on the disk.
    for name in names:
        wait_for(lambda: controller.answered(name) == len(controller.asked[name]), 40,
                 lambda: f"{name}: {controller.answered(name)} answers to {len(controller.asked[name])} wishes")
    time.sleep(2)
    for name in names:
        fleet.stop(name)
    time.sleep(2)
    for name in names:
        controller.say(f"export {name} {work}/{name}.json")
    controller.say("quit")
    controller.process.wait(15)
    for name in names:
        for words, output in ((["diff", "--schema", f"{name}.json", f"{name}.rec", f"{name}.json"], ""),
                              (["get", f"{name}.rec", "climate/target"], f"{controller.asked[name][-1]}\n")):
            told = subprocess.run([str(build / "tools/legacyif"), *words], cwd=work, capture_output=True, text=True)
            if (told.returncode, told.stdout) != (0, output):
                failures.append(f"{name}: {told} and not {output!r}")
    wishes = sum(len(asked) for asked in controller.asked.values())
    print(f"{wishes} values set on {count} devices through {dict(sorted(counts.items()))}")
    if failures:
        sys.exit("\n".join(failures) + f"\nthe logs are in {work}")
print("every device has what was answered, and the controller has what every device has")
