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
import subprocess
import sys
import time
from pathlib import Path

from serving import Fleet, free_port, publish, wait_for

os.environ.pop("LEGACYIF_FLEET_USER", None)
failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)
        print(f"FAILED: {what}", flush=True)


def check(rows, where=None):
    """Each row: the arguments, the exit status, and what the output and the complaint match."""
    for arguments, status, out, complaint in rows:
        result = fleet.run(*arguments, where=where)
        said = f"{' '.join(arguments)}: {result.returncode} {result.stdout!r} {result.stderr!r}"
        expect(result.returncode == status, f"status {status} of {said}")
        expect(re.search(out, result.stdout) if out else result.stdout == "", f"output {out!r} of {said}")
        expect(re.search(complaint, result.stderr) if complaint else result.stderr == "",
               f"complaint {complaint!r} of {said}")


def await_device(name, state="online", where=None):
    wait_for(lambda: f"{name}\t{state}" in fleet.run("list", where=where).stdout, what=f"{name} {state}")


def expect_end(status, complaint, *command):
    """A device that has to end at once."""
    ended = subprocess.run([fleet.device_program, *command], capture_output=True, text=True, timeout=20)
    expect(ended.returncode == status and complaint in ended.stderr, f"{complaint}: {ended}")


schema = {"sections": [{"path": "any", "id": 16777215, "parameters": [
    {"schema": {"title": "count", "type": "integer", "minimum": 1, "maximum": 9, "default": 1,
                "x-legacyif": {"id": 0, "permission": 3, "type": "Numeric", "elementType": "U16", "unit": "\u202ex"}}},
    {"schema": {"title": "list", "x-legacyif": {"id": 1, "permission": 3, "type": "StringArray"}}},
    {"schema": {"title": "text", "x-legacyif": {"id": 2, "permission": 3, "type": "String"}}},
    {"schema": {"title": "fixed", "x-legacyif": {"id": 3, "permission": 1, "type": "Bool"}}},
    {"schema": {"title": "place", "type": "object", "properties": {"x": {"maximum": 5}, "y": {}},
                "x-legacyif": {"id": 4, "permission": 3, "type": "Coordinate", "elementType": "U16"}}},
]}]}


def start_any():
    fleet.device("any", *any_options)
    await_device("any")


def test_scripts():
    result = fleet.run("list", timeout="0.3")
    expect(result.returncode == 6 and "no broker" in result.stderr, f"without a broker: {result}")
    fleet.start_broker()
    (work / "any.json").write_text(json.dumps(schema))
    start_any()
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
    exported = json.loads(fleet.command("export", "any"))
    expect(exported["sections"][0]["parameters"][0]["value"] == 7, "the export has the value")

    # A second device of the name ends, whichever file it has, and the first one goes on.
    expect_end(3, "another device has this name", *fleet.at, "--name", "any")
    expect_end(1, "another process", *fleet.at, "--name", "any", *any_options)
    check([(["set", "any", "any/count", "8"], 0, "", "")])

    # Killed, it is offline at once, and started again it has everything.
    fleet.stop("any", signal.SIGKILL)
    await_device("any", "offline")
    check([(["get", "any", "any/count"], 4, "^8 ", "offline"), (["set", "any", "any/count", "1"], 4, "", "offline")])
    start_any()
    check([(["get", "any", "any/count"], 0, "^8 ", ""), (["get", "any", "any/list"], 0, r"\(a, b\)", "")])


def test_stopped():
    """One that does not answer, and then does what it was asked to."""
    fleet.running["any"].send_signal(signal.SIGSTOP)
    result = fleet.run("set", "any", "any/count", "2", timeout="0.5")
    expect(result.returncode == 7, f"a stopped device: {result}")
    fleet.running["any"].send_signal(signal.SIGCONT)
    wait_for(lambda: fleet.run("get", "any", "any/count").stdout.startswith("2 "), what="the wish")


def test_damage():
    """Whatever stands at the broker, a controller goes on."""
    for topic, payload in (("ghost/about", b"FL\x02A\x01" + bytes(24) + b"evil\x1b[2J\xc2\x9b"),
                           ("ghost/schema", b'{"sections": [{'), ("ghost/value/a/b", b"FL\x02V\xff"),
                           ("any/value/any/count", b"x" * 70000), ("any/schema", b"x" * 1100000)):
        publish(fleet.broker, f"fleet/{topic}", payload)
    check([
        (["list"], 0, r"ghost\tonline\tevil\?\[2J\?\n", ""),
        (["export", "ghost", "--timeout", "1"], 7, "", "dropped a damaged.*schema.*byte"),
    ])
    result = fleet.run("get", "any", "any/list", timeout="1")
    expect(result.returncode == 7 and "more than" in result.stderr, f"a foreign schema: {result}")
    for topic in ("about", "schema", "value/a/b"):
        publish(fleet.broker, f"fleet/ghost/{topic}", b"")


def test_terminal():
    """History and completion, and nothing on the screen that was not meant."""
    screen, terminal = pty.openpty()
    shell = fleet.start("shell", fleet.fleet_program, *fleet.at, stdin=terminal, stdout=terminal, stderr=terminal,
                        env={**os.environ, "TERM": "xterm", "XDG_STATE_HOME": str(work)})
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

    def has_ended():
        while select.select([screen], [], [], 0)[0]:
            os.read(screen, 4096)
        return shell.poll() is not None

    wait_for(has_ended, what="the end of the shell")
    expect(shell.returncode == 0, "the shell ends well")
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
    shutil.copy(Path(__file__).parent.parent / "broker/fleet.acl", work / "acl")
    for path in work.glob("*"):
        if path.suffix in (".key", "") and path.is_file():
            path.chmod(0o644 if path.name in ("passwords", "acl", "server.key") else 0o600)
    work.chmod(0o755)
    fleet.start_broker("allow_anonymous false", f"password_file {work}/passwords", f"acl_file {work}/acl",
                       f"cafile {work}/ca.crt", f"certfile {work}/server.crt", f"keyfile {work}/server.key",
                       "require_certificate true", name="secured", port=secured)
    bare = ["--broker", f"127.0.0.1:{secured}"]
    tls = [*bare, "--ca", str(work / "ca.crt"), "--cert", str(work / "client.crt"), "--key", str(work / "client.key")]

    def as_user(user):
        return [*tls, "--credentials", str(work / user)]

    fleet.device("door", "--template", "climate", where=as_user("door"))
    await_device("door", where=as_user("desk"))
    check([(["set", "door", "climate/target", "220"], 0, "", ""), (["get", "door", "climate/target"], 0, "^220 ", "")],
          as_user("desk"))
    expect_end(6, "does not let this user be the device", *as_user("hall"), "--name", "door")
    for name, password, mode in (("wrong", "secret", 0o600), ("open", "secret-desk", 0o644)):
        (work / name).write_text(f"user = desk\npassword = {password}\n")
        (work / name).chmod(mode)
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
        result = fleet.run("list", where=where, timeout="5" if status == 0 else "1", env=env)
        expect(result.returncode == status and re.search(complaint, result.stderr), f"{where}: {result}")
    fleet.stop("door")


with Fleet(sys.argv[1]) as fleet:
    work = fleet.work
    any_options = ["--schema", str(work / "any.json"), "--values", str(work / "any.rec")]
    test_scripts()
    test_stopped()
    test_damage()
    # Started again, it puts its own in the place of what others wrote.
    fleet.stop("any")
    fleet.device("any", *any_options)
    fleet.device("hall", "--template", "climate", "--interval", "3600")
    await_device("hall")
    test_terminal()
    test_security()
    fleet.stop("any")
    fleet.stop("hall")
print("all passed" if not failures else f"{len(failures)} failures")
sys.exit(bool(failures))
