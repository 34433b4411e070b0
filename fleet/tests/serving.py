"""A broker, devices, controllers and the page of a fleet on the loopback, for the tests of its programs."""

import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import time

os.environ["PATH"] += ":/usr/sbin:/usr/local/sbin"


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
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def publish(port, topic, payload, retain=True):
    """What any foreign program could send."""
    def text(value):
        return len(value).to_bytes(2, "big") + value

    body = text(topic.encode()) + payload
    size = b""
    rest = len(body)
    while rest or not size:
        rest, digit = divmod(rest, 128)
        size += bytes([digit | (0x80 if rest else 0)])
    with socket.create_connection(("127.0.0.1", port), 10) as broker:
        broker.sendall(b"\x10\x13" + text(b"MQTT") + b"\x04\x02\x00\x3c" + text(b"foreign"))
        broker.recv(4)
        broker.sendall((b"\x31" if retain else b"\x30") + size + body + b"\xe0\x00")
        broker.recv(1)


class Fleet:
    """Everything that it starts ends with it."""

    def __init__(self, programs):
        self.device_program = str(pathlib.Path(programs) / "legacyif-device")
        self.fleet_program = str(pathlib.Path(programs) / "legacyif-fleet")
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="fleet-test-"))
        self.running = {}
        self.port = 0
        self.broker = free_port()
        self.at = ["--broker", f"127.0.0.1:{self.broker}"]

    def __enter__(self):
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
                print(f"--- {log}\n{log.read_text(errors='replace')[-2000:]}")
        else:
            shutil.rmtree(self.work)

    def start(self, name, *command, **streams):
        with open(self.work / f"{name}.log", "ab") as log:
            streams = {"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log, **streams}
            self.running[name] = subprocess.Popen([str(part) for part in command], **streams)
        return self.running[name]

    def stop(self, name, how=signal.SIGTERM):
        """One that is asked to end ends well, also if it was stopped for a while."""
        process = self.running.pop(name)
        process.send_signal(how)
        process.send_signal(signal.SIGCONT)
        status = process.wait(15)
        assert how != signal.SIGTERM or status == 0, f"{name} ended with {status}"

    def start_broker(self, *lines, name="broker", port=None):
        """Its address may be taken for a moment after another one was killed."""
        port = port or self.broker
        configuration = self.work / f"{name}.conf"
        configuration.write_text("\n".join([f"listener {port} 127.0.0.1", *(lines or ["allow_anonymous true"]), ""]))

        def is_up():
            if name not in self.running or self.running[name].poll() is not None:
                self.start(name, "mosquitto", "-c", configuration)
            return listens(port)

        wait_for(is_up, what="the broker")

    def device(self, name, *options, where=None):
        return self.start(name, self.device_program, "--name", name, *(where or self.at), *options)

    def serve(self):
        """The page, on the port that it had before if there was one."""
        log = self.work / "page.log"
        log.write_text("")
        self.start("page", self.fleet_program, "serve", "--port", self.port, *self.at)
        line = wait_for(lambda: next((line for line in log.read_text().splitlines() if line.startswith("http:")), None),
                        what="the page")
        self.port = int(line.rsplit(":", 1)[1].strip("/"))

    def run(self, *words, where=None, timeout="5", **options):
        """A command of the controller, however it ends."""
        return subprocess.run([self.fleet_program, *(where or self.at), "--timeout", timeout, *words],
                              capture_output=True, text=True, stdin=subprocess.DEVNULL, timeout=30, **options)

    def command(self, *words):
        """What a command of the controller prints that ends well."""
        done = self.run(*words)
        assert done.returncode == 0, done
        return done.stdout.strip()
