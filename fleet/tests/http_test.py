#!/usr/bin/env python3
"""What the page's server answers to those who keep to the rules, and to those who do not.

usage: http_test.py PROGRAMS     the folder of legacyif-device and legacyif-fleet
"""

import json
import random
import re
import socket
import sys
import threading
import time

from serving import Fleet, wait_for

LIMIT, STREAMS = 64, 32

# What a device may call its things, and numbers that a browser would round.
STRANGE = r"""
{"format": 1, "sections": [{"path": "a \u202eplace", "id": 16777215, "parameters": [
  {"schema": {"title": "large", "type": "integer", "maximum": 18446744073709551615, "default": 18446744073709551614,
    "x-legacyif": {"id": 0, "type": "Numeric", "elementType": "U64", "permission": 3}}},
  {"schema": {"title": "red \u202edlog", "type": "string", "maxLength": 3, "default": "too \\ \"long\" \u0007",
    "x-legacyif": {"id": 1, "type": "String", "permission": 3}}},
  {"schema": {"title": "choice", "type": "integer", "enum": [-5, 7, 8], "default": 7, "x-legacyif": {"id": 2,
    "type": "Enum", "permission": 3, "elements": [{"name": "min\u0085us"}, {"name": "8"}, {"name": "-", "disabled": true}]}}}
]}]}
"""


def read_answer(connection, is_head=False):
    """Status, header and body of one answer; a status of 0 if there was none."""
    data = b""
    while b"\r\n\r\n" not in data:
        part = connection.recv(65536)
        if not part:
            return 0, "", b""
        data += part
    head, _, body = data.partition(b"\r\n\r\n")
    header = head.decode()
    length = re.search(r"(?im)^content-length: (\d+)\r?$", header)
    while length and not is_head and len(body) < int(length[1]):
        part = connection.recv(65536)
        if not part:
            break
        body += part
    return int(header.split()[1]), header, body


class Client:
    def __init__(self, fleet):
        self.fleet = fleet
        self.own = f"127.0.0.1:{fleet.port}"
        self.token = re.search(rb'name="token" content="([0-9a-f]{32})"', self.ask("GET", "/")[2])[1].decode()

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.fleet.port), 20)

    def send(self, data, is_head=False):
        with self.connect() as connection:
            try:
                connection.sendall(data)
            except (ConnectionResetError, BrokenPipeError):
                pass  # it has heard enough; the answer is there all the same
            return read_answer(connection, is_head)

    def request(self, method, target, *fields, body=b"", host=None):
        lines = [f"{method} {target} HTTP/1.1", f"Host: {host or self.own}", *fields]
        if body:
            lines.append(f"Content-Length: {len(body)}")
        return "\r\n".join(lines).encode() + b"\r\n\r\n" + body

    def ask(self, method, target, *fields, **options):
        return self.send(self.request(method, target, *fields, **options), method == "HEAD")

    def wish(self, value, /, *fields, **changes):
        whole = {"device": "door", "id": self.frame_rate, "section": "video", "name": "frame-rate", "value": value}
        body = json.dumps({**whole, **changes}).encode()
        return self.ask("POST", "/api/set", "Content-Type: application/json", f"X-Legacyif-Token: {self.token}",
                        *fields, body=body)

    def parameters(self, device, *fields):
        """What the page is told of them, and the text of that."""
        stream, text = self.events(f"/api/events?device={device}", *fields)
        stream.close()
        return json.loads(text.rsplit("data: ", 1)[1])["parameters"], text

    def events(self, target="/api/events?device=door", *fields):
        """The connection, and what it tells at first up to the device."""
        connection = self.connect()
        connection.sendall(self.request("GET", target, *fields))
        text = b""
        while b"event: device\n" not in text or not text.endswith(b"\n\n"):
            part = connection.recv(65536)
            if not part:
                break
            text += part
        return connection, text.decode()


def until(stream, pattern):
    """What comes up to there."""
    received = ""
    while not re.search(pattern, received):
        received += stream.recv(65536).decode()
    return received


def expect(what, answer, status):
    assert answer[0] == status, f"{what}: {answer[0]} instead of {status}: {answer[1:]}"
    if status:
        assert "default-src 'none'" in answer[1] and "nosniff" in answer[1] and "no-store" in answer[1], answer[1]


def asked_well(client):
    for target, kind, part in (("/", "text/html", b'lang="en"'), ("/page.js", "text/javascript", b"EventSource"),
                               ("/page.css", "text/css", b"prefers-color-scheme"), ("/icon.svg", "image/svg+xml", b"<svg"),
                               ("/api/devices?filter=DOO&state=online", "application/json", b'"matches":1,')):
        answer = client.ask("GET", target)
        expect(target, answer, 200)
        assert f"Content-Type: {kind}" in answer[1] and part in answer[2], answer
        head = client.ask("HEAD", target)
        expect("HEAD " + target, head, 200)
        assert not head[2] and f"Content-Length: {len(answer[2])}" in head[1], head
    for accept, language in (("de", "de"), ("DE-at;q=0.4, fr", "de"), ("en;q=0.1,de;q=0.2", "de"), ("fr", "en"),
                             ("de;q=0", "en"), (";;,=de", "en"), ("de;q=x", "en"), ("*, de;q=0.1", "de")):
        answer = client.ask("GET", "/", f"Accept-Language: {accept}")
        assert f'lang="{language}"'.encode() in answer[2], (accept, answer[2][:100])
    # Two requests on one connection, the second before the first was answered.
    with client.connect() as connection:
        connection.sendall(client.request("GET", "/page.css") + client.request("GET", "/nothing", "Connection: close"))
        answers = b"".join(iter(lambda: connection.recv(65536), b""))
        assert re.findall(rb"HTTP/1\.1 (\d+)", answers) == [b"200", b"404"], answers


def other_sites(client):
    own, other = f"http://{client.own}", "http://evil.example"
    port = client.fleet.port
    ok, foreign, refused, bad = 200, 421, 403, 400
    cases = [
        ("/", client.own, [], ok), ("/", f"localhost:{port}", [], ok), ("/", f"[::1]:{port}", [], ok),
        ("/", "LOCALHOST:1", [], ok), ("/", "localhost", [], ok),
        ("/", "evil.example", [], foreign), ("/", f"evil.example:{port}", [], foreign),
        ("/", f"127.0.0.1.evil.example:{port}", [], foreign), ("/", f"localhost.:{port}", [], foreign),
        ("/", "user@localhost", [], foreign), ("/", "localhost:1x", [], foreign), ("/", "", [], bad),
        ("/", client.own, ["Host: localhost"], bad),
        ("/api/devices", client.own, [f"Origin: {own}"], ok),
        ("/api/devices", client.own, [f"Origin: {other}"], refused),
        ("/api/devices", client.own, ["Origin: null"], refused),
        ("/api/devices", client.own, [f"Origin: {own}", f"Origin: {other}"], refused),
        ("/api/devices", client.own, [f"Origin: http://localhost:{port}"], refused),
        ("/api/devices", client.own, ["Sec-Fetch-Site: same-origin"], ok),
        ("/api/devices", client.own, ["Sec-Fetch-Site: cross-site"], refused),
        ("/api/devices", client.own, ["Sec-Fetch-Site: same-site"], refused),
        ("/api/events", client.own, ["Sec-Fetch-Site: cross-site", "Sec-Fetch-Mode: navigate"], refused),
        ("/page.js", client.own, ["Sec-Fetch-Site: cross-site", "Sec-Fetch-Mode: no-cors"], refused),
        ("/", client.own, ["Sec-Fetch-Site: cross-site", "Sec-Fetch-Mode: navigate", "Sec-Fetch-Dest: document"], ok),
        ("/", client.own, ["Sec-Fetch-Site: cross-site", "Sec-Fetch-Mode: navigate", "Sec-Fetch-Dest: iframe"], refused),
    ]
    for target, host, fields, status in cases:
        request = client.request("GET", target, *fields, host=host or "x")
        if not host:
            request = request.replace(b"Host: x\r\n", b"")
        expect(f"{target} {host} {fields}", client.send(request), status)
    for field in ([f"Origin: {other}"], ["Sec-Fetch-Site: cross-site"]):
        expect(f"a wish with {field}", client.wish("26", *field), 403)
    expect("a question before", client.ask("OPTIONS", "/api/set", f"Origin: {other}",
                                           "Access-Control-Request-Method: POST"), 403)
    body = b'{"device":"door"}'
    for fields, status in (([], 403), (["X-Legacyif-Token: " + "0" * 32], 403),
                           ([f"X-Legacyif-Token: {client.token}"], 415),
                           ([f"X-Legacyif-Token: {client.token}", "Content-Type: text/plain"], 415)):
        expect(f"a wish with {fields}", client.ask("POST", "/api/set", *fields, body=body), status)


def wishes(client):
    for what, answer, status, outcome in (
            ("a value", client.wish("26"), 200, "set"),
            ("too much", client.wish("200", "Accept-Language: de"), 409, "refused"),
            ("no value", client.wish("x"), 422, "unreadable"),
            ("no device", client.wish("1", device="nobody"), 404, "no-parameter"),
            ("another name", client.wish("1", name="state"), 404, "no-parameter"),
            ("another section", client.wish("1", section=""), 404, "no-parameter"),
            ("no parameter", client.wish("1", id=4294967295), 404, "no-parameter")):
        expect(what, answer, status)
        assert json.loads(answer[2])["outcome"] == outcome, answer
        if outcome == "refused":
            assert "über dem Maximum von 60" in answer[2].decode(), answer
    assert client.fleet.command("get", "door", "video/frame-rate") == "26 Hz"
    for changes in ({"id": -1}, {"id": 2 ** 32}, {"id": "1"}, {"id": 1.5}, {"device": None}, {"value": ["1"]}):
        expect(f"a wish of {changes}", client.wish("1", **changes), 400)
    fields = ["Content-Type: application/json", f"X-Legacyif-Token: {client.token}"]
    for body in (b"{", b"[]", b"null", b"[" * 100000, b'{"device":"\xff"}', b"\0", b'{"id":1}'):
        expect(f"the body {body[:20]}", client.ask("POST", "/api/set", *fields, body=body), 400)


def outside_of_the_rules(client):
    many = [f"X-{i}: x" for i in range(2000)]
    methods = [("DELETE", "/", 405), ("POST", "/", 405), ("POST", "/api/devices", 405), ("GET", "/api/set", 405),
               ("HEAD", "/api/events", 405), ("TRACE", "/page.js", 405), ("GET", "/api", 404), ("GET", "/x" * 1000, 404),
               ("GET", "/../../etc/passwd", 404), ("GET", "/%2e%2e/page.js", 404), ("GET", "/page.js%00", 404),
               ("GET", "http://evil.example/", 400), ("GET", "*", 400), ("GET", "/%zz", 400), ("GET", "page.js", 400)]
    for method, target, status in methods:
        answer = client.ask(method, target)
        expect(f"{method} {target[:40]}", answer, status)
        assert ("Allow: " in answer[1]) == (status == 405), answer
    plain = client.request("POST", "/api/set")[:-2]
    chunked = plain + b"Transfer-Encoding: chunked\r\n\r\n"
    for what, data, status in (
            ("a long target", client.request("GET", "/" + "x" * 20000), 431),
            ("many fields", client.request("GET", "/", *many), 431),
            ("a long field without an end", b"GET / HTTP/1.1\r\nX: " + b"x" * 100000, 431),
            ("a large body", plain + b"Content-Length: 99999999999\r\n\r\n", 413),
            ("a large body that is sent", plain + b"Content-Length: 500000\r\n\r\n" + b"x" * 500000, 413),
            ("large chunks", chunked + (b"4000\r\n" + b"x" * 0x4000 + b"\r\n") * 20, 413),
            ("damaged chunks", chunked + b"zz\r\n", 400),
            ("two lengths", plain + b"Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", 400),
            ("a negative length", plain + b"Content-Length: -2\r\n\r\n{}", 400),
            ("both lengths", plain + b"Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400),
            ("another version", client.request("GET", "/").replace(b"HTTP/1.1", b"HTTP/3.0"), 505),
            ("no version", b"GET /\r\n\r\n", 400), ("TLS", b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\r\n", 400),
            ("bytes", bytes(range(256)), 400), ("a folded field", b"GET / HTTP/1.1\r\n Host: x\r\n\r\n", 400)):
        expect(what, client.send(data), status)
    with client.connect() as connection:
        connection.sendall(client.request("GET", "/")[:20])
        connection.shutdown(socket.SHUT_WR)
        assert read_answer(connection)[0] == 0


def damaged(client):
    """Requests with a few bytes changed, cut or doubled: each has a status or none, and the next one is served."""
    chance = random.Random(4)
    wish = client.request("POST", "/api/set", "Content-Type: application/json", f"X-Legacyif-Token: {client.token}",
                          body=b'{"device":"door","id":1,"section":"","name":"x","value":"1"}')
    seeds = [wish, client.request("GET", "/api/devices?filter=a&after=b"), client.request("GET", "/", "Accept-Language: de")]
    seen = {}
    for _ in range(400):
        data = bytearray(chance.choice(seeds))
        for _ in range(chance.randint(1, 6)):
            place = chance.randrange(len(data))
            data[place:place + chance.choice((0, 1, 1, 5))] = bytes(
                chance.choice((0, 10, 13, 32, 37, 58, 255, chance.randrange(256))) for _ in range(chance.choice((0, 1, 1, 3))))
        with client.connect() as connection:
            connection.sendall(bytes(data))
            connection.shutdown(socket.SHUT_WR)
            status = read_answer(connection)[0]
        seen[status] = seen.get(status, 0) + 1
    assert set(seen) <= {0, 200, 400, 403, 404, 405, 413, 415, 421, 431, 505}, seen
    assert seen.get(400, 0) > 50, seen
    print("damaged requests by their status:", dict(sorted(seen.items())))
    expect("the next one", client.ask("GET", "/"), 200)


def events(client):
    stream, text = client.events("/api/events?device=door", "Accept-Language: de")
    assert "text/event-stream" in text and '"text":"door"' in text, text
    for value in ("5", "10", "15", "20"):
        client.fleet.command("set", "door", "video/frame-rate", value)
    received = until(stream, '"text":"20"')
    assert '"finding"' not in received and "event: values" in received, received
    stream.close()
    # Names that no device has, or that are none, are not there; the list tells nothing of devices that nobody opened.
    for name in ("nobody", "%00", "%F0%9F", "x" * 2000):
        stream, text = client.events(f"/api/events?device={name}")
        assert "event: device\ndata: null\n" in text, text
        stream.close()
    # A device may come later than the page that wants it.
    stream, text = client.events("/api/events?device=later")
    client.fleet.device("later")
    until(stream, 'event: device\ndata: {"name":"later".*"parameters":\\[{')
    stream.close()
    client.fleet.stop("later")


def strange_devices(client):
    """What is told of them can be shown, numbers are exact, and what was shown can be set."""
    (large, red, choice), text = client.parameters("strange", "Accept-Language: de")
    assert not re.search("[\0-\x09\x0b\x0c\x0e-\x1f\x7f-\x9f\u2028-\u202e]", text), text
    assert large["text"] == large["schema"]["default"] == "18446744073709551614", large
    assert large["schema"]["maximum"] == "18446744073709551615", large
    assert (red["section"], red["name"], red["edit"]) == ("a ?place", "red ?dlog", ""), red
    assert red["schema"]["default"] == red["text"] == 'too \\ "long" ?', red
    assert red["finding"] == "red ?dlog: Der Text ist länger als 3 Bytes.", red
    assert choice["choices"] == [{"text": "min?us", "edit": "-5", "number": "-5"},
                                 {"text": "8", "edit": "8", "number": "7"}], choice
    for place, value in ((red, "ok"), (choice, "8"), (choice, "-5"), (large, "18446744073709551615")):
        answer = client.wish(value, device="strange", **{key: place[key] for key in ("id", "section", "name")})
        expect(f"{place['name']} = {value}", answer, 200)
    assert [one["edit"] for one in client.parameters("strange")[0]] == ["18446744073709551615", "ok", "-5"]


def too_many(client):
    """So many connections are served and no more, and all of them again when those are gone."""
    wait_for(lambda: client.ask("GET", "/")[0] == 200, what="room")
    time.sleep(0.2)
    streams = [client.events()[0] for _ in range(STREAMS)]
    expect("a stream more", client.ask("GET", "/api/events?device=door"), 503)
    expect("something else", client.ask("GET", "/"), 200)
    idle = [client.connect() for _ in range(LIMIT - STREAMS)]
    time.sleep(0.2)
    expect("a connection more", client.ask("GET", "/"), 503)
    flood = [client.connect() for _ in range(100)]
    for connection in streams + idle + flood:
        connection.close()
    wait_for(lambda: client.ask("GET", "/")[0] == 200, what="room again")


def late(client, result):
    """A request that does not come to its end."""
    start = time.monotonic()
    with client.connect() as connection:
        connection.sendall(client.request("GET", "/")[:30])
        result.append((read_answer(connection)[0], time.monotonic() - start))


def main():
    with Fleet(sys.argv[1]) as fleet:
        fleet.start_broker()
        fleet.device("door", "--interval", "3600")
        (fleet.work / "strange.json").write_text(STRANGE, encoding="ascii")
        fleet.device("strange", "--schema", str(fleet.work / "strange.json"))
        fleet.serve()
        client = Client(fleet)
        wait_for(lambda: client.ask("GET", "/api/devices")[2].count(b'"complete":true') == 2, what="the devices")
        client.frame_rate = next(one["id"] for one in client.parameters("door")[0] if one["name"] == "frame-rate")
        result = []
        slow = threading.Thread(target=late, args=(client, result))
        slow.start()
        for part in (asked_well, other_sites, wishes, outside_of_the_rules, damaged, events, strange_devices):
            part(client)
        slow.join()
        assert result[0][0] == 408 and 10 < result[0][1] < 18, result
        too_many(client)
        # It ends at once with pages open, and well.
        streams = [client.events()[0] for _ in range(3)]
        start = time.monotonic()
        fleet.stop("page")
        assert time.monotonic() - start < 3
        del streams
    print("All of it was answered as it should be.")


if __name__ == "__main__":
    main()
