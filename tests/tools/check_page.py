#!/usr/bin/env python3
"""Pages of orlo-view in a browser: what the mouse, the keyboard and the buttons do, and that nothing is asked of the network.

usage: check_page.py --orlo-view PATH --shots FOLDER PIECE...
Each piece's page is looked at, then a page without events and one with more events than are drawn one by one. A picture of each
is kept in the folder, to be looked at. Without Chromium, its driver or python3-selenium the test is skipped (status 77).
"""

import argparse
import json
import math
import os
import shutil
import subprocess
import sys
import tempfile

try:
    from selenium import webdriver
    from selenium.common.exceptions import TimeoutException
    from selenium.webdriver.chrome.options import Options
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.actions.action_builder import ActionBuilder
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.actions.wheel_input import ScrollOrigin
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    print("python3-selenium is not here")
    sys.exit(77)

SKIP = 77
PATIENCE = 60  # seconds for a condition; no more than the slowest machine needs
MANY = 50_001
BROWSER_OPTIONS = ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-dev-shm-usage",
                   "--disable-background-networking", "--disable-component-update", "--disable-sync", "--hide-scrollbars",
                   "--force-device-scale-factor=1", "--window-size=1280,1100")

# the middle of an element's part that is seen, after scrolling there
MIDDLE = """
arguments[0].scrollIntoView({block: "center", behavior: "instant"});
const box = arguments[0].getBoundingClientRect();
return [box.left + box.width / 2, box.top + box.height / 2];
"""

# where an event stands in a lane, or in the roll where the lane is null: the script's arithmetic is not used
POINT = """
const [plot, event, low, high, y] = arguments;
plot.scrollIntoView({block: "center", behavior: "instant"});
const box = plot.getBoundingClientRect();
return [box.left + 1 + (event[2] - low) / (high - low) * plot.clientWidth, box.top + 1 + y];
"""


class Fault(Exception):
    """What is wrong with a page."""


def expect(condition, text):
    if not condition:
        raise Fault(text)


def start_browser(folder):
    options = Options()
    options.binary_location = shutil.which("chromium")
    for option in (*BROWSER_OPTIONS, f"--user-data-dir={folder}"):
        options.add_argument(option)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)


def wait(browser, what, condition):
    """Waits until a condition holds; its value."""
    try:
        return WebDriverWait(browser, PATIENCE, poll_frequency=0.05).until(lambda _: condition())
    except TimeoutException:
        raise Fault(f"waited in vain: {what}") from None


def find(browser, selector):
    return browser.find_elements(By.CSS_SELECTOR, selector)


def seen(browser):
    """The part of the whole that is seen."""
    return tuple(float(browser.execute_script(f"return document.documentElement.dataset.{end}")) for end in ("from", "to"))


def is_whole(browser):
    return seen(browser) == (0, 1)


def open_page(browser, path):
    for log in ("browser", "performance"):
        browser.get_log(log)
    browser.get(f"file://{path}")
    wait(browser, "the page is complete", lambda: browser.execute_script("return document.readyState") == "complete")


def check_logs(browser, path):
    """Nothing is complained of, and nothing but the page itself is asked for."""
    complaints = [entry["message"] for entry in browser.get_log("browser") if entry["level"] in ("SEVERE", "WARNING")]
    expect(not complaints, f"the browser complains: {complaints}")
    messages = [json.loads(entry["message"])["message"] for entry in browser.get_log("performance")]
    requests = [message["params"] for message in messages if message["method"] == "Network.requestWillBeSent"]
    asked = [request["request"]["url"] for request in requests if request["documentURL"] == f"file://{path}"]
    expect(f"file://{path}" in asked, f"the page is not among what was asked for: {asked}")
    others = [url for url in asked if url != f"file://{path}" and not url.startswith("data:")]
    expect(not others, f"more than the page is asked for: {others}")


def point_at(browser, x, y):
    actions = ActionBuilder(browser, duration=0)
    actions.pointer_action.move_to_location(round(x), round(y))
    actions.perform()


def tip_rows(browser):
    """What is shown of an event: pairs of name and value; None where nothing is."""
    return browser.execute_script("""
        const tip = document.getElementById("tip");
        const texts = (tag) => [...tip.querySelectorAll(tag)].map((cell) => cell.textContent);
        return tip.hidden ? null : texts("dt").map((name, i) => [name, texts("dd")[i]]);""")


def as_shown(browser, score, event):
    """An event's p-fields as they should be shown."""
    return browser.execute_script(
        "return arguments[0].map((value, i) => [arguments[1][i], value === null ? 'no number' : String(value)])",
        event[6:], score["names"])


def value_of(event, field):
    """A p-field of an event; None where it has none, or no finite number in it."""
    value = event[5 + field] if 5 + field < len(event) else None
    return value if isinstance(value, (int, float)) else None


def check_hover(browser, score, plot, lane):
    """An event's p-fields are shown over its note, or over its dot in a lane; nothing is shown elsewhere."""
    events = [event for event in score["events"] if lane is None or value_of(event, lane["field"]) is not None]
    event = events[len(events) // 2]
    y = event[4]
    if lane:
        width = lane["high"] - lane["low"]
        height = plot.size["height"] - 2 * score["padding"]
        y = score["padding"] + height * (1 - ((value_of(event, lane["field"]) - lane["low"]) / width if width else 0.5))
    x, y = browser.execute_script(POINT, plot, event, score["low"], score["high"], y)
    point_at(browser, x + (1 if lane is None else 0), y)
    shown = wait(browser, "the p-fields of an event are shown", lambda: tip_rows(browser))
    fields = shown[-len(event) + 6:]
    name = "the roll" if lane is None else f"p{lane['field']}"
    near = [other for other in events if other[2] <= event[2] + (score["high"] - score["low"]) / 50
            and other[2] + other[3] >= event[2] - (score["high"] - score["low"]) / 50]
    expect(fields in [as_shown(browser, score, other) for other in near], f"in {name}: no event there has {fields}")
    expect(find(browser, ".mark circle, .mark rect"), "the event is not marked")
    point_at(browser, 2, 2)
    wait(browser, "nothing is shown beside the plots", lambda: tip_rows(browser) is None)


def check_zoom(browser, roll):
    """The wheel zooms at the pointer, dragging moves, a double click and a key show the whole."""
    boxes = [data.get_dom_attribute("viewBox") for data in find(browser, ".data")]
    x, y = browser.execute_script(MIDDLE, roll)
    box = browser.execute_script("const box = arguments[0].getBoundingClientRect(); return [box.left, box.width]", roll)
    x = round(x + box[1] / 8)
    place = (x - box[0]) / box[1]
    ActionChains(browser, duration=0).scroll_from_origin(ScrollOrigin.from_viewport(x, round(y)), 0, -500).perform()
    wait(browser, "the wheel zooms", lambda: seen(browser)[1] - seen(browser)[0] < 0.9)
    start, end = wait(browser, "zooming is over", lambda: seen(browser))
    expect(math.isclose(start + place * (end - start), place, abs_tol=1e-3), f"zoomed at another place: {start}, {end}")
    now = [data.get_dom_attribute("viewBox") for data in find(browser, ".data")]
    expect(all(old != new for old, new in zip(boxes, now)), "not all plots are zoomed")

    actions = ActionBuilder(browser, duration=0)
    actions.pointer_action.move_to_location(x, round(y)).pointer_down().move_to_location(x - 60, round(y)).pointer_up()
    actions.perform()
    wanted = start + 60 / box[1] * (end - start)
    wait(browser, "dragging moves", lambda: math.isclose(seen(browser)[0], wanted, abs_tol=1e-2) and seen(browser)[0] > start)

    ActionChains(browser, duration=0).double_click(roll).perform()
    wait(browser, "a double click shows the whole", lambda: is_whole(browser))
    expect([data.get_dom_attribute("viewBox") for data in find(browser, ".data")] == boxes, "the whole is not what it was")
    keys = ActionChains(browser, duration=0)
    keys.send_keys("+").perform()
    wait(browser, "+ zooms", lambda: seen(browser)[1] - seen(browser)[0] == 0.5)
    keys = ActionChains(browser, duration=0)
    keys.send_keys("0").perform()
    wait(browser, "0 shows the whole", lambda: is_whole(browser))
    for button, width in (("nearer", 0.5), ("farther", 1), ("nearer", 0.5), ("whole", 1)):
        browser.find_element(By.ID, button).click()
        wait(browser, f"button {button}", lambda width=width: seen(browser)[1] - seen(browser)[0] == width)


def check_pinch(browser, roll):
    """Two fingers that part to twice their distance show half as much."""
    x, y = browser.execute_script(MIDDLE, roll)

    def touch(kind, *distances):
        browser.execute_cdp_cmd("Input.dispatchTouchEvent", {
            "type": kind, "touchPoints": [{"x": x + away, "y": y, "id": i} for i, away in enumerate(distances)]})

    touch("touchStart", -50, 50)
    touch("touchMove", -60, 60)
    touch("touchMove", -100, 100)
    touch("touchEnd")
    wait(browser, "two fingers zoom", lambda: math.isclose(seen(browser)[1] - seen(browser)[0], 0.5, abs_tol=0.01))
    browser.find_element(By.ID, "whole").click()
    wait(browser, "the whole is shown", lambda: is_whole(browser))


def is_shown(browser, selector):
    """Is every element shown? None where they differ."""
    shown = set(browser.execute_script(
        "return [...document.querySelectorAll(arguments[0])].map((part) => getComputedStyle(part).display !== 'none')", selector))
    return shown.pop() if len(shown) == 1 else None


def check_hiding(browser):
    """Keys and clicks on an instrument or on a heading hide what belongs to it and bring it back."""
    button = find(browser, ".legend button")[0]
    for key, shown in ((Keys.SPACE, False), (Keys.ENTER, True)):
        button.send_keys(key)
        wait(browser, f"instrument is {'shown' if shown else 'hidden'}", lambda shown=shown: is_shown(browser, ".s0") is shown)
        expect(button.get_attribute("aria-pressed") == str(shown).lower(), "aria-pressed of an instrument is wrong")
    ActionChains(browser, duration=0).key_down(Keys.SHIFT).click(button).key_up(Keys.SHIFT).perform()
    pressed = [other.get_attribute("aria-pressed") for other in find(browser, ".legend button")]
    expect(pressed == ["true"] + ["false"] * (len(pressed) - 1), f"an instrument is not alone: {pressed}")
    ActionChains(browser, duration=0).key_down(Keys.SHIFT).click(button).key_up(Keys.SHIFT).perform()
    expect(all(other.get_attribute("aria-pressed") == "true" for other in find(browser, ".legend button")), "not all are back")

    heading = find(browser, ".head button")[-1]
    box = f"#{heading.get_attribute('aria-controls')}"
    for key, shown in ((Keys.ENTER, False), (Keys.SPACE, True)):
        heading.send_keys(key)
        wait(browser, f"lane is {'shown' if shown else 'hidden'}", lambda shown=shown: is_shown(browser, box) is shown)
        expect(heading.get_attribute("aria-expanded") == str(shown).lower(), "aria-expanded of a lane is wrong")


def check_theme(browser):
    """The button changes between light and dark."""
    def colours():
        return browser.execute_script("const style = getComputedStyle(document.body); return [style.backgroundColor, style.color]")
    before = colours()
    browser.find_element(By.ID, "theme").click()
    wait(browser, "the theme changes", lambda: all(old != new for old, new in zip(before, colours())))
    browser.find_element(By.ID, "theme").click()
    wait(browser, "the theme changes back", lambda: colours() == before)


def check_page(browser, path):
    open_page(browser, path)
    wait(browser, "the script has drawn", lambda: browser.execute_script("return document.documentElement.dataset.to") == "1")
    score = json.loads(browser.execute_script("return document.getElementById('score-data').textContent"))
    plots = find(browser, ".plot")
    expect(score["events"] and len(plots) == 1 + len(score["lanes"]), "the page has no events, or not all lanes")
    notes = len(find(browser, "#roll .data rect"))
    expect(notes == len(score["events"]), f"{notes} notes for {len(score['events'])} events")
    for plot, lane in zip(plots, [None, *score["lanes"]]):
        check_hover(browser, score, plot, lane)
    check_zoom(browser, plots[0])
    check_pinch(browser, plots[0])
    check_hiding(browser)
    check_theme(browser)
    check_logs(browser, path)
    return f"{notes} notes, {len(score['lanes'])} lanes"


def check_empty(browser, path):
    open_page(browser, path)
    expect("There are no events to draw" in browser.find_element(By.TAG_NAME, "body").text, "the page does not say that it is empty")
    check_logs(browser, path)
    return "says so"


def check_many(browser, path):
    """Events that are not drawn one by one: the page says what is left out, and zooms."""
    open_page(browser, path)
    wait(browser, "the script has drawn", lambda: browser.execute_script("return document.documentElement.dataset.to") == "1")
    text = browser.find_element(By.TAG_NAME, "header").text
    expect("drawn as one" in text and "are not shown" in text, f"the page does not say what it leaves out: {text}")
    expect(not find(browser, ".data rect") and find(browser, "#roll .data path"), "notes are elements of their own")
    check_zoom(browser, find(browser, ".plot")[0])
    check_theme(browser)
    check_logs(browser, path)
    return "compact"


def make_page(program, source, folder, name):
    path = os.path.join(folder, f"{name}.html")
    run = subprocess.run([program, "-f", "html", "-o", path, os.path.basename(source)], cwd=os.path.dirname(source), timeout=300,
                         stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        sys.exit(f"{source}: orlo-view ends with status {run.returncode}\n{run.stderr}")
    return path


def write_score(folder, name, lines):
    path = os.path.join(folder, name)
    with open(path, "w", encoding="ascii") as file:
        file.writelines(lines)
    return path


def look_at(browser, shots, name, check, path):
    """Runs a check and keeps a picture; the fault, or None."""
    fault = None
    try:
        print(f"{name}: {check(browser, path)}")
    except Fault as found:
        fault = f"{name}: {found}"
        print(fault)
    browser.get_screenshot_as_file(os.path.join(shots, f"{name}.png"))
    return fault


def main():
    parser = argparse.ArgumentParser(description="look at pages of orlo-view in a browser")
    parser.add_argument("--orlo-view", required=True, help="the program")
    parser.add_argument("--shots", required=True, help="folder for pictures of the pages")
    parser.add_argument("pieces", nargs="+", metavar="PIECE")
    options = parser.parse_args()
    for program in ("chromium", "chromedriver"):
        if not shutil.which(program):
            print(f"{program} is not here")
            return SKIP

    program = os.path.abspath(options.orlo_view)
    os.makedirs(options.shots, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="orlo-page-", ignore_cleanup_errors=True) as folder:
        pages = []
        for piece in options.pieces:
            name = os.path.splitext(os.path.basename(piece))[0]
            pages.append((name, check_page, make_page(program, os.path.abspath(piece), folder, name)))
        empty = write_score(folder, "empty.sco", ["; nothing\n"])
        many = write_score(folder, "many.sco", (f"i{i % 5 + 1} {i / 100} .5 {i % 997} 8.{i * 7 % 12:02d}\n" for i in range(MANY)))
        pages.append(("empty", check_empty, make_page(program, empty, folder, "empty")))
        pages.append(("many", check_many, make_page(program, many, folder, "many")))
        browser = start_browser(os.path.join(folder, "browser"))
        try:
            faults = [look_at(browser, options.shots, *page) for page in pages]
        finally:
            browser.quit()
    faults = [fault for fault in faults if fault]
    print(f"{len(pages)} pages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
