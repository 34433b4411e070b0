#!/usr/bin/env python3
"""Runs the programs of the fleet as scripts, people and accidents do, with brokers of its own on the loopback.

usage: programs.py FOLDER_OF_THE_PROGRAMS
"""
import json
import os
import pty
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

programs = Path(sys.argv[1])
device_program, fleet_program = str(programs / "legacyif-device"), str(programs / "legacyif-fleet")
os.environ["PATH"] += ":/usr/sbin:/usr/local/sbin"
os.environ.pop("LEGACYIF_FLEET_USER", None)
work = Path(tempfile.mkdtemp())
running = []
failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)
        print(f"FAILED: {what}", flush=True)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def start(*command, **options):
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.STDOUT, **options}
    process = subprocess.Popen(command, text=True, **options)
    running.append(process)
    return process


def start_broker(port, *lines):
    config = work / f"broker-{port}.conf"
    config.write_text("\n".join([f"listener {port} 127.0.0.1", "persistence false", *lines, ""]))
    broker = start("mosquitto", "-c", str(config), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    for _ in range(100):
        with socket.socket() as probe:
            if probe.connect_ex(("127.0.0.1", port)) == 0:
                return broker
        time.sleep(0.05)
    raise RuntimeError("no broker")


def stop(process, how=signal.SIGTERM):
    process.send_signal(how)
    return process.wait(10)


def publish(port, topic, payload, retain=True):
    """What any foreign program could send."""
    def text(value):
        return len(value).to_bytes(2, "big") + value

    body = text(topic.encode()) + payload
    size = b""
    rest = len(body)
    while True:
        rest, digit = divmod(rest, 128)
        size += bytes([digit | (0x80 if rest else 0)])
        if not rest:
            break
    with socket.create_connection(("127.0.0.1", port)) as broker:
        broker.sendall(b"\x10\x13" + text(b"MQTT") + b"\x04\x02\x00\x3c" + text(b"foreign"))
        broker.recv(4)
        broker.sendall((b"\x31" if retain else b"\x30") + size + body + b"\xe0\x00")
        broker.recv(1)


port = free_port()
at = ["--broker", f"127.0.0.1:{port}"]


def fleet(*arguments, timeout="5", where=None, **options):
    return subprocess.run([fleet_program, *(where or at), "--timeout", timeout, *arguments], capture_output=True,
                          text=True, stdin=subprocess.DEVNULL, timeout=30, **options)


def check(rows, where=None):
    """Each row: the arguments, the exit status, and what the output and the complaint match."""
    for arguments, status, out, complaint in rows:
        result = fleet(*arguments, where=where)
        said = f"{' '.join(arguments)}: {result.returncode} {result.stdout!r} {result.stderr!r}"
        expect(result.returncode == status, f"status {status} of {said}")
        expect(re.search(out, result.stdout) if out else result.stdout == "", f"output {out!r} of {said}")
        expect(re.search(complaint, result.stderr) if complaint else result.stderr == "",
               f"complaint {complaint!r} of {said}")


def await_device(name, state="online", where=None):
    for _ in range(100):
        if f"{name}\t{state}" in fleet("list", where=where).stdout:
            return
        time.sleep(0.05)
    expect(False, f"{name} is not {state}")


schema = {"sections": [{"path": "any", "id": 16777215, "parameters": [
    {"schema": {"title": "count", "type": "integer", "minimum": 1, "maximum": 9, "default": 1,
                "x-legacyif": {"id": 0, "permission": 3, "type": "Numeric", "elementType": "U16", "unit": "\u202ex"}}},
    {"schema": {"title": "list", "x-legacyif": {"id": 1, "permission": 3, "type": "StringArray"}}},
    {"schema": {"title": "text", "x-legacyif": {"id": 2, "permission": 3, "type": "String"}}},
    {"schema": {"title": "fixed", "x-legacyif": {"id": 3, "permission": 1, "type": "Bool"}}},
    {"schema": {"title": "place", "type": "object", "properties": {"x": {"maximum": 5}, "y": {}},
                "x-legacyif": {"id": 4, "permission": 3, "type": "Coordinate", "elementType": "U16"}}},
]}]}


def test_scripts():
    check([(["list"], 6, "", "no broker")], ["--broker", f"127.0.0.1:{port}", "--timeout", "0.3"])
    global broker
    broker = start_broker(port, "allow_anonymous true")
    (work / "any.json").write_text(json.dumps(schema))
    values = str(work / "any.rec")
    command = [device_program, *at, "--name", "any", "--schema", str(work / "any.json"), "--values", values]
    device = start(*command)
    await_device("any")
    check([
        (["list"], 0, r"^any\tonline\tany\n$", ""),
        (["get", "any", "any/count"], 0, r"^\d \?x\n$", ""),
        (["set", "any", "any/count", "7"], 0, "", ""),
        (["get", "any", "any/count", "--format", "json"], 0, r'^{"device":"any","path":"any/count","value":7,', ""),
        (["set", "any", "any/count", "10"], 5, "", r"refused \(-41\): .*9"),
        (["set", "any", "any/count", "0", "--language", "de", "--format", "json"], 5, '"code":-41,"message":".*Minimum', ""),
        (["set", "any", "any/count", "--", "-1"], 2, "", "whole number from 0 to 65535"),
        (["set", "any", "any/count", "1.5"], 2, "", "whole number"),
        (["set", "any", "any/list", "2 a b"], 2, "", "no value"),
        (["set", "any", "any/list", '["a", "b"]'], 0, "", ""),
        (["get", "any", "any/list"], 0, r"^\(a, b\)\n$", ""),
        (["set", "any", "any/text", "a\x1b[2J\u202e\u009b"], 0, "", ""),
        (["get", "any", "any/text"], 0, r"^a\?\[2J\?\?\n$", ""),
        (["set", "any", "any/fixed", "true"], 5, "", "only be read"),
        (["set", "any", "any/place", '{"x": 6, "y": 1}'], 5, "", "outside|Außerhalb"),
        (["set", "any", "any/place", '{"x": 5, "y": 1}'], 0, "", ""),
        (["get", "any", "any/none"], 8, "", "no parameter"),
        (["set", "any", "any/none", "1"], 8, "", "no parameter"),
        (["get", "none", "any/count"], 3, "", "no device none"),
        (["set", "none", "any/count", "1"], 3, "", "no device none"),
        (["export", "none"], 3, "", "no device none"),
        (["get", "a b", "x/y"], 2, "", "not a name"),
        (["frobnicate"], 2, "", "."),
        (["list", "--broker", "nowhere"], 2, "", "not a host"),
    ])
    exported = json.loads(fleet("export", "any").stdout)
    expect(exported["sections"][0]["parameters"][0]["value"] == 7, "the export has the value")

    # A second device of the name ends, whichever file it has, and the first one goes on.
    second = subprocess.run([device_program, *at, "--name", "any"], capture_output=True, text=True, timeout=20)
    expect(second.returncode == 3 and "another device has this name" in second.stderr, f"second device: {second}")
    second = subprocess.run([*command[:-1], values], capture_output=True, text=True, timeout=20)
    expect(second.returncode == 1 and "another process" in second.stderr, f"second process: {second}")
    check([(["set", "any", "any/count", "8"], 0, "", "")])

    # Killed, it is offline at once, and started again it has everything.
    stop(device, signal.SIGKILL)
    await_device("any", "offline")
    check([(["get", "any", "any/count"], 4, "^8 ", "offline"), (["set", "any", "any/count", "1"], 4, "", "offline")])
    device = start(*command)
    await_device("any")
    check([(["get", "any", "any/count"], 0, "^8 ", ""), (["get", "any", "any/list"], 0, r"\(a, b\)", "")])
    return device, command


def test_stopped(device):
    """One that does not answer, and then finds that another has its name."""
    device.send_signal(signal.SIGSTOP)
    result = fleet("set", "any", "any/count", "2", timeout="0.5")
    expect(result.returncode == 7, f"a stopped device: {result}")
    device.send_signal(signal.SIGCONT)
    for _ in range(100):
        if "2 " in fleet("get", "any", "any/count").stdout:
            break
        time.sleep(0.05)
    check([(["get", "any", "any/count"], 0, "^2 ", "")])


def test_damage():
    """Whatever stands at the broker, a controller goes on."""
    publish(port, "fleet/ghost/about", b"FL\x02A\x01" + bytes(24) + b"evil\x1b[2J\xc2\x9b")
    publish(port, "fleet/ghost/schema", b'{"sections": [{')
    publish(port, "fleet/ghost/value/a/b", b"FL\x02V\xff")
    publish(port, "fleet/any/value/any/count", b"x" * 70000)
    publish(port, "fleet/any/schema", b"x" * 1100000)
    check([
        (["list"], 0, r"ghost\tonline\tevil\?\[2J\?\n", ""),
        (["export", "ghost", "--timeout", "1"], 7, "", "dropped a damaged.*schema.*byte"),
    ])
    result = fleet("get", "any", "any/list", timeout="1")
    expect(result.returncode == 7 and "more than" in result.stderr, f"a foreign schema: {result}")
    for topic in ("fleet/ghost/about", "fleet/ghost/schema", "fleet/ghost/value/a/b"):
        publish(port, topic, b"")


def test_terminal():
    """History and completion, and nothing on the screen that was not meant."""
    pid, screen = pty.fork()
    if pid == 0:
        os.environ.update(TERM="xterm", XDG_STATE_HOME=str(work))
        os.execv(fleet_program, [fleet_program, *at])
    seen = b""

    def await_text(text):
        nonlocal seen
        end = time.time() + 8
        while text not in seen and time.time() < end and select.select([screen], [], [], 1)[0]:
            seen += os.read(screen, 4096)
        expect(text in seen, f"the terminal shows {text!r}: {seen[-500:]!r}")
        seen = b""

    await_text(b"climate, online")
    os.write(screen, b"wait\r")
    time.sleep(0.3)
    os.write(screen, b"get ha\tclimate/ta\t\r")
    await_text(b"210 1/10")
    os.write(screen, b"\x1b[A\r")
    await_text(b"210 1/10")
    os.write(screen, b"quit\r")
    ended, status = 0, 0
    for _ in range(100):
        if select.select([screen], [], [], 0.05)[0]:
            try:
                os.read(screen, 4096)
            except OSError:
                time.sleep(0.05)
        ended, status = os.waitpid(pid, os.WNOHANG)
        if ended:
            break
    if not ended:
        os.kill(pid, signal.SIGKILL)
        os.waitpid(pid, 0)
    expect(ended and os.waitstatus_to_exitcode(status) == 0, "the terminal ends well")
    expect("climate/target" in (work / "legacyif-fleet/history").read_text(), "the history is kept")


def test_security():
    """TLS, passwords, and an access list that lets each device write its own topics only."""
    secured = free_port()

    def openssl(*arguments):
        subprocess.run(["openssl", *arguments], cwd=work, check=True, capture_output=True)

    for name in ("ca", "otherca"):
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", f"{name}.key", "-out", f"{name}.crt",
                "-days", "2", "-subj", f"/CN={name}", "-addext", "basicConstraints=critical,CA:TRUE")
    (work / "san").write_text("subjectAltName=IP:127.0.0.1")
    for name in ("server", "client"):
        openssl("req", "-newkey", "rsa:2048", "-nodes", "-keyout", f"{name}.key", "-out", f"{name}.csr", "-subj",
                f"/CN={name}")
        openssl("x509", "-req", "-in", f"{name}.csr", "-CA", "ca.crt", "-CAkey", "ca.key", "-CAcreateserial", "-out",
                f"{name}.crt", "-days", "2", "-extfile", "san")
    users = ("door", "hall", "desk")
    (work / "passwords").write_text("".join(f"{user}:secret-{user}\n" for user in users))
    subprocess.run(["mosquitto_passwd", "-U", str(work / "passwords")], check=True)
    for user in users:
        (work / user).write_text(f"user = {user}\npassword = secret-{user}\n")
        (work / user).chmod(0o600)
    shutil.copy(Path(__file__).parent.parent / "broker/fleet.acl", work / "acl")
    for path in work.glob("*"):
        if path.suffix in (".key", "") and path.is_file():
            path.chmod(0o644 if path.name in ("passwords", "acl", "server.key") else 0o600)
    work.chmod(0o755)
    broker = start_broker(secured, "allow_anonymous false", f"password_file {work}/passwords", f"acl_file {work}/acl",
                          f"cafile {work}/ca.crt", f"certfile {work}/server.crt", f"keyfile {work}/server.key",
                          "require_certificate true")
    bare = ["--broker", f"127.0.0.1:{secured}"]
    tls = [*bare, "--ca", str(work / "ca.crt"), "--cert", str(work / "client.crt"), "--key", str(work / "client.key")]

    def as_user(user):
        return [*tls, "--credentials", str(work / user)]

    device = start(device_program, *as_user("door"), "--name", "door", "--template", "climate")
    await_device("door", where=as_user("desk"))
    check([(["set", "door", "climate/target", "220"], 0, "", ""), (["get", "door", "climate/target"], 0, "^220 ", "")],
          as_user("desk"))
    strange = subprocess.run([device_program, *as_user("hall"), "--name", "door"], capture_output=True, text=True,
                             timeout=20)
    expect(strange.returncode == 6 and "does not let this user be the device" in strange.stderr, f"a stranger: {strange}")
    expect(device.poll() is None, "the device goes on")
    (work / "wrong").write_text("user = desk\npassword = secret\n")
    (work / "wrong").chmod(0o600)
    (work / "open").write_text("user = desk\npassword = secret-desk\n")
    (work / "open").chmod(0o644)
    environment = {**os.environ, "LEGACYIF_FLEET_USER": "desk", "LEGACYIF_FLEET_PASSWORD": "secret-desk"}
    for where, status, complaint, env in (
            (as_user("wrong"), 6, "refused|authori[sz]ed", None),
            (tls, 6, "refused|authori[sz]ed", None),
            ([*bare, "--credentials", str(work / "desk")], 6, "no broker", None),
            ([*bare, "--ca", str(work / "otherca.crt"), "--credentials", str(work / "desk")], 6, "certificate|TLS", None),
            ([*bare, "--ca", str(work / "ca.crt"), "--credentials", str(work / "desk")], 6, "no broker", None),
            ([*tls, "--credentials", str(work / "open")], 2, "open to others", None),
            ([*bare, "--cert", str(work / "client.crt")], 2, "go together", None),
            (tls, 0, "", environment)):
        result = fleet("list", where=where, timeout="5" if status == 0 else "1", env=env)
        expect(result.returncode == status and re.search(complaint, result.stderr), f"{where}: {result}")
    expect(stop(device) == 0, "the device ends well")
    stop(broker)


try:
    device, command = test_scripts()
    test_stopped(device)
    test_damage()
    # Started again, it puts its own in the place of what others wrote.
    expect(stop(device) == 0, "the device ends well")
    device = start(*command)
    hall = start(device_program, *at, "--name", "hall", "--template", "climate", "--interval", "3600")
    await_device("hall")
    test_terminal()
    test_security()
    expect(stop(device) == 0 and stop(hall) == 0, "the devices end well")
finally:
    for process in running:
        if process.poll() is None:
            process.kill()
            process.wait()
    shutil.rmtree(work)
print("all passed" if not failures else f"{len(failures)} failures")
sys.exit(bool(failures))
