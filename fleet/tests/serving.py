"""A broker, devices and the page of a fleet on the loopback, for the tests of the page."""

import contextlib
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time

PATH = os.environ.get("PATH", "") + ":/usr/sbin:/usr/local/sbin"


def wait_for(look, seconds=10, what="it"):
    """Calls until there is something, and returns that."""
    end = time.monotonic() + seconds
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > end:
            raise AssertionError(f"{what() if callable(what) else what}: not within {seconds} s")
        time.sleep(0.02)


def listens(port):
    try:
        socket.create_connection(("127.0.0.1", port), 1).close()
        return True
    except OSError:
        return False


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Fleet:
    """Everything that it starts ends with it."""

    def __init__(self, programs):
        self.programs = pathlib.Path(programs)
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="fleet-page-"))
        self.running = {}
        self.port = 0

    def __enter__(self):
        mosquitto = shutil.which("mosquitto", path=PATH)
        if not mosquitto:
            sys.exit("mosquitto is not installed")
        self.broker = free_port()
        configuration = self.work / "broker.conf"
        configuration.write_text(f"listener {self.broker} 127.0.0.1\nallow_anonymous true\npersistence false\n")
        self.start("broker", [mosquitto, "-c", str(configuration)])
        wait_for(lambda: listens(self.broker), what="the broker")
        return self

    def __exit__(self, kind, *_):
        for process in self.running.values():
            process.terminate()
        for process in self.running.values():
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(5)
            process.kill()
        if kind:
            for log in sorted(self.work.glob("*.log")):
                print(f"--- {log.name}\n{log.read_text(errors='replace')[-2000:]}")
        shutil.rmtree(self.work)

    def start(self, name, command):
        with open(self.work / f"{name}.log", "ab") as log:
            self.running[name] = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log)

    def stop(self, name):
        process = self.running.pop(name)
        process.terminate()
        assert process.wait(10) == 0, f"{name} ended with {process.returncode}"

    def device(self, name, *options):
        self.start(name, [str(self.programs / "legacyif-device"), "--name", name, "--broker",
                          f"127.0.0.1:{self.broker}", *options])

    def serve(self):
        """The page, on the port that it had before if there was one."""
        log = self.work / "page.log"
        log.write_text("")
        self.start("page", [str(self.programs / "legacyif-fleet"), "serve", "--port", str(self.port), "--broker",
                            f"127.0.0.1:{self.broker}"])
        line = wait_for(lambda: next((line for line in log.read_text().splitlines() if line.startswith("http:")), None),
                        what="the page")
        self.port = int(line.rsplit(":", 1)[1].strip("/"))

    def command(self, *words):
        """What a command of the controller prints."""
        done = subprocess.run([str(self.programs / "legacyif-fleet"), *words, "--broker", f"127.0.0.1:{self.broker}"],
                              capture_output=True, text=True, timeout=30, check=True)
        return done.stdout.strip()
