#!/usr/bin/env python3
"""The page of a fleet in a real browser, without a mouse: Chromium, driven by the WebDriver protocol.

usage: page_test.py PROGRAMS     the folder of legacyif-device and legacyif-fleet
Ends with 77 where there is no browser, and with 0 only if all of it was seen.
"""

import http.client
import json
import os
import shutil
import sys
import time

from serving import Fleet, free_port, listens, wait_for

SKIPPED = 77
TAB, ENTER, ESCAPE = "\ue004", "\ue007", "\ue00c"
LONG_NAME = "a-name-that-is-longer-than-its-hostname-may-be"
HOSTILE = "<img src=x onerror=document.title='taken'> \u202egnp.txt \x1b[31m"

# The contrast of each text with what is behind it, by the rules of WCAG 2: those below 4.5.
CONTRAST = """
const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
const light = ([r, g, b]) => [r, g, b].map((c) => c / 255)
  .map((c) => (c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4))
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const behind = (node) => {
  for (; node; node = node.parentElement) {
    const colour = numbers(getComputedStyle(node).backgroundColor);
    if (colour.length === 3 || colour[3] === 1) return colour;
  }
  return [255, 255, 255];
};
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
const found = { texts: 0, low: [] };
while (walker.nextNode()) {
  const node = walker.currentNode.parentElement;
  if (!walker.currentNode.data.trim() || !node.getClientRects().length) continue;
  const [a, b] = [light(numbers(getComputedStyle(node).color)), light(behind(node))];
  const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
  ++found.texts;
  if (contrast < 4.5) found.low.push(`${walker.currentNode.data.trim()}: ${contrast.toFixed(2)}`);
}
return found;
"""


class Browser:
    """The few commands of the protocol that this needs."""

    def __init__(self, fleet, driver, chromium):
        self.port = free_port()
        fleet.start("driver", driver, f"--port={self.port}")
        wait_for(lambda: listens(self.port), what="the driver")
        arguments = ["--headless=new", "--window-size=1200,940", f"--user-data-dir={fleet.work / 'profile'}",
                     "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run", "--hide-scrollbars"]
        if os.geteuid() == 0:
            arguments.append("--no-sandbox")
        self.path = ""
        session = self.call("POST", "/session", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": {"binary": chromium, "args": arguments},
            "goog:loggingPrefs": {"browser": "ALL"}}}})
        self.path = "/session/" + session["sessionId"]
        self.agent = self.run("return navigator.userAgent")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.call("DELETE", "", None)

    def call(self, method, path, body):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        connection.request(method, self.path + path, None if body is None else json.dumps(body),
                           {"Content-Type": "application/json"})
        answer = json.loads(connection.getresponse().read())["value"]
        connection.close()
        if isinstance(answer, dict) and "error" in answer:
            raise AssertionError(f"{path}: {answer['message'][:600]}")
        return answer

    def run(self, script, *arguments):
        return self.call("POST", "/execute/sync", {"script": script, "args": arguments})

    def tell(self, command, **parameters):
        return self.call("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def open(self, url, language):
        self.tell("Network.setUserAgentOverride", userAgent=self.agent, acceptLanguage=language)
        for place in ("about:blank", url):  # another part of a page that is there already would not ask for it anew
            self.call("POST", "/url", {"url": place})

    def press(self, *keys):
        steps = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self.call("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": steps}]})

    def tab_to(self, test):
        """Goes on with the tabulator until the focused element passes; it must be seen to have the focus."""
        for _ in range(120):
            self.press(TAB)
            if self.run(f"const e = document.activeElement; return Boolean({test})"):
                width = self.run("return getComputedStyle(document.activeElement).outlineWidth")
                assert width == "3px", f"the focus is not to be seen: {width}"
                return
        raise AssertionError("the tabulator does not lead to: " + test)

    def change(self, label, *keys):
        """Begins to edit and types."""
        self.tab_to(f"e.getAttribute('aria-label') == '{label}'")
        self.press(ENTER)
        self.press(*keys)


VALUE = "return document.querySelector(`[data-path='${arguments[0]}'] .value`)?.textContent"


class Show:
    def __init__(self, fleet, browser):
        self.fleet = fleet
        self.browser = browser
        self.url = f"http://127.0.0.1:{fleet.port}/"

    def value(self, path):
        return self.browser.run(VALUE, path)

    def expect(self, path, text, seconds=5):
        wait_for(lambda: self.value(path) == text, seconds, lambda: f"{path} = {text}: {self.value(path)}")

    def text(self, selector):
        return self.browser.run("return document.querySelector(arguments[0])?.innerText || ''", selector)

    def expect_text(self, selector, text, seconds=5):
        wait_for(lambda: text in self.text(selector), seconds, lambda: f"'{text}' in {selector}: {self.text(selector)}")

    def devices_by_keyboard(self):
        """The list, its search, and a device that is opened; in German."""
        page = self.browser
        page.open(self.url, "de-AT,en;q=0.5")
        self.expect_text("h1", "Flotte")
        self.expect_text("#link", "mit dem Broker verbunden")
        self.expect_text("#count", "3 von 3")
        page.tab_to("e.id == 'filter'")
        page.press(*"DOO")
        self.expect_text("#count", "1 von 3")
        page.tab_to("e.getAttribute('href') == '#device=door'")
        page.press(ENTER)
        self.expect("video/frame-rate", "25")
        assert self.text("#devices [aria-current]").startswith("door")
        self.expect_text("[data-path='video/frame-rate']", "1 bis 60")
        self.expect_text("[data-path='video/state']", "eins von off, standby, streaming")

    def changes(self):
        """What another controller sets is seen within a second of the device's answer; measurements come anew."""
        slowest = 0
        for value in ("30", "12", "31"):
            self.fleet.command("set", "door", "video/frame-rate", value)
            start = time.monotonic()
            self.expect("video/frame-rate", value, 1)
            slowest = max(slowest, time.monotonic() - start)
        print(f"a change was seen {slowest * 1000:.0f} ms after the device's answer, at the latest")
        former = self.value("system/uptime")
        wait_for(lambda: self.value("system/uptime") != former, 5, "another uptime")

    def setting(self):
        """A value is set, one is refused, and one is none; the focus stays where somebody goes on."""
        page = self.browser
        page.change("frame-rate ändern", *"45", ENTER)
        self.expect_text("[data-path='video/frame-rate']", "frame-rate ist gesetzt.")
        self.expect("video/frame-rate", "45")
        assert self.fleet.command("get", "door", "video/frame-rate") == "45 Hz"
        assert page.run("return document.activeElement.getAttribute('aria-label')") == "frame-rate ändern"

        page.press(ENTER)
        page.press(*"200", ENTER)
        refusal = "Das Gerät lehnt ab: frame-rate: Der Wert liegt über dem Maximum von 60."
        self.expect_text("tr.edit .answer", refusal)
        assert self.text("#announcement") == refusal
        described = "const e = document.activeElement; return e.ariaInvalid + ' ' + e.labels[0].textContent + ' ' + " \
                    "document.getElementById(e.getAttribute('aria-describedby')).textContent"
        assert page.run(described) == f"true Neuer Wert von frame-rate {refusal}"
        page.press(*"x", ENTER)
        self.expect_text("tr.edit .answer", "Das ist kein Wert dieses Parameters.")
        page.press(ESCAPE)
        assert page.run("return document.querySelector('tr.edit')") is None
        assert self.value("video/frame-rate") == "45"

        page.change("state ändern", *"stre", ENTER)
        page.tab_to("e.type == 'submit'")
        page.press(ENTER)
        self.expect("video/state", "streaming")

    def findings(self):
        """What a device has against its own schema, and texts that would be more than that."""
        self.browser.open(self.url + "#device=" + LONG_NAME, "en")
        self.expect_text("[data-path='system/hostname'] .finding", "hostname: ")
        assert "32" in self.text("[data-path='system/hostname'] .finding")
        title = self.text("#title")
        assert title == "<img src=x onerror=document.title='taken'> ?gnp.txt ?[31m", title
        assert self.browser.run("return document.title").startswith(LONG_NAME)

    def names(self):
        """Everything that somebody can do something with has a name, for those who do not see it."""
        nodes = self.browser.tell("Accessibility.getFullAXTree")["nodes"]
        roles = {}
        for node in nodes:
            role = node.get("role", {}).get("value")
            if not node.get("ignored") and role in ("button", "link", "textbox", "searchbox", "combobox", "table"):
                roles[role] = roles.get(role, 0) + 1
                assert node.get("name", {}).get("value"), node
        assert {"button", "link", "searchbox", "combobox", "table"} <= set(roles), roles
        print("all have names:", roles)

    def contrast(self):
        """Of all texts, those of a finding and of a refusal among them."""
        self.browser.change("Change frame-rate", *"0", ENTER)
        self.expect_text("tr.edit .answer", "The device refuses: frame-rate: the value is below the minimum of 1.")
        for scheme in ("light", "dark"):
            self.browser.tell("Emulation.setEmulatedMedia", features=[
                {"name": "prefers-color-scheme", "value": scheme}, {"name": "prefers-reduced-motion", "value": "reduce"}])
            found = self.browser.run(CONTRAST)
            print(f"contrast, {scheme}: {found['texts']} texts, {len(found['low'])} below 4.5")
            assert found["texts"] > 40 and not found["low"], found
        self.browser.tell("Emulation.setEmulatedMedia", features=[])

    def losses(self):
        """A device goes; the program goes and comes back, and what was open is there again, to be set as before."""
        self.browser.open(self.url + "#device=door", "en")
        self.expect_text("#device-state", "online")
        self.fleet.stop("hall")
        self.expect_text("#count", "2 online")
        self.fleet.stop("page")
        self.expect_text("#link", "no connection to legacyif-fleet")
        self.fleet.command("set", "door", "video/frame-rate", "50")
        self.fleet.serve()
        self.expect("video/frame-rate", "50", 15)
        self.browser.change("Change frame-rate", *"51", ENTER)
        self.expect("video/frame-rate", "51")

    def quiet(self):
        """Nothing was refused by the rules of the page, and no script failed."""
        messages = [entry["message"] for entry in self.browser.call("POST", "/se/log", {"type": "browser"})]
        faults = [text for text in messages if "Security Policy" in text or "Error" in text or "TrustedHTML" in text]
        assert not faults, faults


def browsers():
    """The driver and the browser, or none."""
    found = shutil.which("chromedriver"), shutil.which("chromium")
    return found if all(found) else None


def main():
    found = browsers()
    if not found:
        print("chromium and chromium-driver are not installed")
        raise SystemExit(SKIPPED)
    with Fleet(sys.argv[1]) as fleet, Browser(fleet, *found) as browser:
        fleet.start_broker()
        fleet.device("door", "--title", "Camera at the door", "--interval", "0.5")
        fleet.device("hall", "--template", "climate", "--title", "Climate of the hall")
        fleet.device(LONG_NAME, "--title", HOSTILE)
        fleet.serve()
        show = Show(fleet, browser)
        for part in (show.devices_by_keyboard, show.changes, show.setting, show.findings, show.names, show.contrast,
                     show.quiet, show.losses):
            part()
    print("All of it was seen.")


if __name__ == "__main__":
    main()
