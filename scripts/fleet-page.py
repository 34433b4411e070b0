#!/usr/bin/env python3
"""Takes the picture of the fleet's page that the documentation shows.

usage: fleet-page.py PROGRAMS FILE.png     PROGRAMS is the folder of legacyif-device and legacyif-fleet
"""

import base64
import sys
import time
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent.parent / "fleet/tests"))
from page_test import ENTER, Browser, Show, browsers
from serving import Fleet

found = browsers() or sys.exit("chromium and chromium-driver are not installed")
with Fleet(sys.argv[1]) as fleet, Browser(fleet, *found) as browser:
    fleet.start_broker()
    fleet.device("door", "--title", "Camera at the door", "--interval", "0.5")
    fleet.device("hall", "--template", "climate", "--title", "Climate of the hall")
    fleet.serve()
    show = Show(fleet, browser)
    browser.tell("Emulation.setDeviceMetricsOverride", width=1180, height=1130, deviceScaleFactor=1, mobile=False)
    browser.open(show.url + "#device=door", "en")
    show.expect_text("#device-state", "online")
    browser.change("Change frame-rate", *"200", ENTER)
    show.expect_text("tr.edit .answer", "refuses")
    browser.run("scrollTo(0, 0)")
    time.sleep(1)
    Path(sys.argv[2]).write_bytes(base64.b64decode(browser.call("GET", "/screenshot", None)))
