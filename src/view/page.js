// What moves in a page: the stretch of time that is seen, who is hidden, the event under the pointer, the theme. The drawing
// itself is in the page already and is never made anew: a nested svg for each plot is as wide as the whole score, and zooming
// changes the part of it that is seen.
"use strict";
(() => {
  const page = document.documentElement;
  const all = (selector, inside = document) => [...inside.querySelectorAll(selector)];
  const score = JSON.parse(document.getElementById("score-data").textContent);
  const plots = all(".plot").map((svg) => ({
    svg,
    lane: svg.dataset.lane === undefined ? null : score.lanes[svg.dataset.lane],
    data: svg.querySelector(".data"),
    times: svg.querySelector(".times"),
    mark: svg.querySelector(".mark"),
    height: Number(svg.getAttribute("height")),
  }));
  const axis = document.querySelector(".axis .labels");
  const hidden = new Set();
  const LEAST = score.many ? 0.01 : 0.0001; // of the whole: the drawing is not finer than this
  let from = 0; // what is seen, as parts of the whole
  let to = 1;

  // ---- time

  const whole = score.high - score.low;
  const seenAt = (part) => (part - from) / (to - from);

  function element(name, attributes, parent, text) {
    const made = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
    if (text !== undefined) made.textContent = text;
    parent.append(made);
    return made;
  }

  // multiples of 1, 2 or 5 times a power of ten, as many as have room
  function ticks(low, high, most) {
    const least = (high - low) / (most - 1);
    const power = 10 ** Math.floor(Math.log10(least));
    const step = [1, 2, 5, 10].map((factor) => factor * power).find((size) => size >= least);
    const found = [];
    for (let n = Math.ceil(low / step); n * step <= high && found.length < most; n++) found.push(n * step);
    return found;
  }

  const label = (value) => String(Number(value.toPrecision(9)));

  function draw() {
    const width = score.width * (to - from);
    const marks = ticks(score.low + from * whole, score.low + to * whole, Math.max(2, Math.floor(axis.clientWidth / 70)));
    const places = marks.map((time) => `${(100 * seenAt((time - score.low) / whole)).toFixed(3)}%`);
    for (const plot of plots) {
      plot.data.setAttribute("viewBox", `${from * score.width} 0 ${width} ${plot.height}`);
      plot.times.replaceChildren();
      for (const x of places) element("line", { class: "g", x1: x, x2: x, y2: "100%" }, plot.times);
    }
    axis.replaceChildren();
    marks.forEach((time, i) => element("text", { class: "m", x: places[i], y: 15 }, axis, label(time)));
    page.dataset.from = from;
    page.dataset.to = to;
    show(null);
  }

  let due = false;
  function see(start, end) {
    const width = Math.min(1, Math.max(LEAST, end - start));
    from = Math.min(1 - width, Math.max(0, start));
    to = from + width;
    if (due) return;
    due = true;
    requestAnimationFrame(() => {
      due = false;
      draw();
    });
  }

  // the part of the whole at a place of the screen
  function partAt(plot, x) {
    const box = plot.svg.getBoundingClientRect();
    return from + ((x - box.left) / box.width) * (to - from);
  }

  function zoom(factor, centre = (from + to) / 2) {
    const width = Math.min(1, Math.max(LEAST, (to - from) * factor));
    const start = centre - ((centre - from) * width) / (to - from);
    see(start, start + width);
  }

  const move = (part) => see(from + part * (to - from), to + part * (to - from));
  const reset = () => see(0, 1);

  // ---- the event under the pointer

  const tip = document.getElementById("tip");
  const [LINE, INSTRUMENT, START, DURATION, Y, KEY, FIELDS] = [0, 1, 2, 3, 4, 5, 6];
  const seriesOf = (event) => Math.min(event[INSTRUMENT], score.series - 1);
  const fraction = (low, high, value) => (high > low ? (value - low) / (high - low) : 0.5);

  // where an event stands in a plot: two ends and the middle, in pixels; null where it has no value
  function placeOf(plot, event, width) {
    const x = seenAt(fraction(score.low, score.high, event[START])) * width;
    if (!plot.lane) return { x, end: x + (event[DURATION] / whole / (to - from)) * width, y: event[Y], half: score.noteHeight / 2 };
    const value = event[FIELDS + plot.lane.field - 1];
    if (typeof value !== "number") return null;
    const room = plot.height - 2 * score.padding;
    return { x, end: x, y: score.padding + (1 - fraction(plot.lane.low, plot.lane.high, value)) * room, half: 0 };
  }

  function nearest(plot, px, py, width) {
    let best = null;
    let least = plot.lane ? 10 : 5; // pixels
    for (const event of score.events) {
      if (hidden.has(seriesOf(event))) continue;
      const place = placeOf(plot, event, width);
      if (!place) continue;
      const away = Math.hypot(Math.max(0, place.x - px, px - place.end), Math.max(0, Math.abs(place.y - py) - place.half));
      if (away <= least) [best, least] = [event, away];
    }
    return best;
  }

  const NAMES = ["C", "C♯", "D", "D♯", "E", "F", "F♯", "G", "G♯", "A", "A♯", "B"];
  function keyName(key) {
    const whole = Math.round(key);
    const cents = Math.round((key - whole) * 100);
    const name = NAMES[((whole % 12) + 12) % 12] + (Math.floor(whole / 12) - 1);
    return cents === 0 ? name : `${name} ${cents > 0 ? "+" : "−"}${Math.abs(cents)} cents`;
  }

  function fill(event) {
    const head = document.createElement("b");
    head.textContent = score.instruments[event[INSTRUMENT]];
    const list = document.createElement("dl");
    const row = (name, value) => {
      for (const [tag, text] of [["dt", name], ["dd", value]]) {
        const cell = document.createElement(tag);
        cell.textContent = text;
        list.append(cell);
      }
    };
    if (event[LINE] > 0) row("line", event[LINE]);
    row("from, to", `${label(event[START])} … ${label(event[START] + event[DURATION])} ${score.unit}`);
    if (event[KEY] !== null) row("pitch", keyName(event[KEY]));
    event.slice(FIELDS).forEach((value, i) => row(score.names[i], value === null ? "no number" : value));
    tip.replaceChildren(head, list);
  }

  // shows an event at a place of the screen and marks it in all plots; null: none
  function show(event, x = 0, y = 0) {
    tip.hidden = !event;
    for (const plot of plots) plot.mark.replaceChildren();
    if (!event) return;
    fill(event);
    const left = x + 16 + tip.offsetWidth > innerWidth ? x - 16 - tip.offsetWidth : x + 16;
    const top = Math.min(y + 12, innerHeight - tip.offsetHeight - 8);
    tip.style.transform = `translate(${Math.max(4, left)}px, ${Math.max(4, top)}px)`;
    for (const plot of plots) {
      const place = placeOf(plot, event, plot.svg.clientWidth);
      if (!place) continue;
      element("line", { "data-line": "", x1: place.x, x2: place.x, y2: plot.height }, plot.mark);
      if (plot.lane) element("circle", { cx: place.x, cy: place.y, r: 5 }, plot.mark);
      else element("rect", { x: place.x - 2, y: place.y - place.half - 2, width: place.end - place.x + 4, height: 2 * place.half + 4 }, plot.mark);
    }
  }

  // ---- pointers

  const down = new Map(); // pointers that touch a plot, by their id: where they are, and the part of the whole they hold
  let dragged = false;

  function hold(plot) {
    const points = [...down.values()];
    for (const point of points) point.part = partAt(plot, point.x);
  }

  function drag(plot) {
    const points = [...down.values()];
    const box = plot.svg.getBoundingClientRect();
    if (points.length === 1) {
      const start = points[0].part - ((points[0].x - box.left) / box.width) * (to - from);
      see(start, start + (to - from));
      return;
    }
    const [one, other] = points;
    if (Math.abs(one.x - other.x) < 8) return;
    const width = Math.min(1, Math.max(LEAST, Math.abs(((one.part - other.part) / (one.x - other.x)) * box.width)));
    const start = (one.part + other.part) / 2 - (((one.x + other.x) / 2 - box.left) / box.width) * width;
    see(start, start + width);
  }

  function hover(plot, event) {
    const box = plot.svg.getBoundingClientRect();
    const found = nearest(plot, event.clientX - box.left - plot.svg.clientLeft, event.clientY - box.top - plot.svg.clientTop,
      plot.svg.clientWidth);
    show(found, event.clientX, event.clientY);
  }

  for (const plot of plots) {
    plot.svg.addEventListener("wheel", (event) => {
      event.preventDefault();
      const pixels = event.deltaMode === 1 ? 16 : event.deltaMode === 2 ? 400 : 1;
      if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY))
        move(((event.deltaX || event.deltaY) * pixels) / plot.svg.clientWidth);
      else zoom(Math.exp(event.deltaY * pixels * (event.ctrlKey ? 0.01 : 0.002)), partAt(plot, event.clientX));
    }, { passive: false });
    plot.svg.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      down.set(event.pointerId, { x: event.clientX, first: event.clientX });
      hold(plot);
      dragged = down.size > 1;
      plot.svg.setPointerCapture(event.pointerId);
    });
    plot.svg.addEventListener("pointermove", (event) => {
      const point = down.get(event.pointerId);
      if (point) {
        point.x = event.clientX;
        dragged ||= Math.abs(point.x - point.first) > 3;
      }
      plot.svg.classList.toggle("dragged", Boolean(point) && dragged);
      if (point && dragged) drag(plot);
      else hover(plot, event);
    });
    for (const end of ["pointerup", "pointercancel"]) {
      plot.svg.addEventListener(end, (event) => {
        down.delete(event.pointerId);
        hold(plot);
        plot.svg.classList.remove("dragged");
      });
    }
    plot.svg.addEventListener("pointerleave", () => show(null));
    plot.svg.addEventListener("dblclick", reset);
  }

  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const keys = {
      "+": () => zoom(0.5), "=": () => zoom(0.5), "-": () => zoom(2), 0: reset, Home: reset,
      ArrowLeft: () => move(-0.2), ArrowRight: () => move(0.2), Escape: () => show(null),
    };
    if (!Object.hasOwn(keys, event.key)) return;
    event.preventDefault();
    keys[event.key]();
  });

  // ---- what is hidden

  const legend = all(".legend button");

  function hide(series, out) {
    if (out) hidden.add(series);
    else hidden.delete(series);
    legend[series].setAttribute("aria-pressed", String(!out));
    for (const part of all(`.s${series}`)) part.classList.toggle("out", out);
    show(null);
  }

  legend.forEach((button, series) => {
    button.addEventListener("click", (event) => {
      if (!event.shiftKey) return hide(series, !hidden.has(series));
      const alone = legend.every((_, other) => hidden.has(other) === (other !== series)); // shown alone already: show all
      legend.forEach((_, other) => hide(other, !alone && other !== series));
    });
    const light = (on) => () => {
      page.classList.toggle("dim", on && !hidden.has(series));
      for (const part of all(`.s${series}`)) part.classList.toggle("lit", on);
    };
    button.addEventListener("pointerenter", light(true));
    button.addEventListener("pointerleave", light(false));
  });

  for (const button of all(".head button")) {
    button.addEventListener("click", () => {
      const open = button.getAttribute("aria-expanded") !== "true";
      button.setAttribute("aria-expanded", String(open));
      document.getElementById(button.getAttribute("aria-controls")).hidden = !open;
      draw();
    });
  }

  // ---- tools

  const theme = document.getElementById("theme");
  const dark = matchMedia("(prefers-color-scheme: dark)");
  const isDark = () => (page.dataset.theme ? page.dataset.theme === "dark" : dark.matches);
  const nameTheme = () => { theme.textContent = isDark() ? "Light" : "Dark"; };
  theme.addEventListener("click", () => {
    page.dataset.theme = isDark() ? "light" : "dark";
    nameTheme();
  });
  dark.addEventListener("change", nameTheme);
  nameTheme();

  document.getElementById("nearer").addEventListener("click", () => zoom(0.5));
  document.getElementById("farther").addEventListener("click", () => zoom(2));
  document.getElementById("whole").addEventListener("click", reset);
  page.classList.remove("without-script");
  addEventListener("resize", draw);
  draw();
})();
