"use strict";
// Shows the reports in the element "data". Everything that comes from a log is put in as text.
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const main = document.getElementById("report");
  const systems = {G: "GPS", R: "GLONASS", E: "Galileo", C: "BeiDou", J: "QZSS", I: "NavIC", S: "SBAS"};
  let plots = [];
  let shown = 0;

  const make = (tag, options = {}, ...children) => {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(options)) element.setAttribute(name, value);
    element.append(...children);
    return element;
  };
  const style = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  const color = (index) => style("--c" + (index % 8));
  // Systems have the same colour everywhere.
  const colorOf = (name, index) => {
    const system = Object.values(systems).indexOf(name);
    return color(system < 0 ? index : system);
  };
  const shortTime = (time) => time ? time.date.replace("T", " ").replace(/\.000$/, "") : "";
  const isNumber = (value) => typeof value === "number";
  const numberText = (value) => value === null || value === undefined ? "\u2013"
    : Number.isInteger(value) ? String(value)
    : Math.abs(value) >= 100 ? value.toFixed(1) : String(Number(value.toPrecision(4)));

  // A table whose columns sort; cells are texts, numbers, null or elements.
  const table = (id, heads, rows, classes = []) => {
    const body = make("tbody");
    for (const row of rows) {
      const line = make("tr");
      row.forEach((cell, i) => {
        const isValue = isNumber(cell) || cell === null;
        const td = make("td", {class: isValue ? "number" : classes[i] || ""},
          isValue ? numberText(cell) : cell);
        if (isNumber(cell)) td.dataset.value = cell;
        line.append(td);
      });
      body.append(line);
    }
    const head = make("tr");
    heads.forEach((text, i) => {
      const isValue = rows.length > 0 && rows.some((row) => isNumber(row[i]));
      const th = make("th", {class: isValue ? "number" : "", tabindex: 0, scope: "col"}, text);
      const sort = () => {
        const down = th.getAttribute("aria-sort") === "ascending";
        for (const other of head.children) other.removeAttribute("aria-sort");
        th.setAttribute("aria-sort", down ? "descending" : "ascending");
        const key = (tr) => {
          const td = tr.children[i];
          return td.dataset.value !== undefined ? Number(td.dataset.value) : td.textContent;
        };
        const order = (a, b) => {
          const x = key(a), y = key(b);
          if (isNumber(x) !== isNumber(y)) return isNumber(x) ? -1 : 1;
          return (x < y ? -1 : x > y ? 1 : 0) * (down ? -1 : 1);
        };
        body.append(...[...body.children].sort(order));
      };
      th.addEventListener("click", sort);
      th.addEventListener("keydown", (event) => { if (event.key === "Enter") sort(); });
      head.append(th);
    });
    return make("div", {class: "scroll"}, make("table", {id}, make("thead", {}, head), body));
  };

  const section = (title, ...content) => main.append(make("h2", {}, title), ...content);

  const showVerdicts = (log) => {
    const grid = make("div", {class: "verdicts"});
    for (const verdict of log.verdicts) {
      grid.append(make("div", {class: "verdict " + verdict.grade, "data-area": verdict.area},
        make("b", {}, verdict.grade), make("strong", {}, verdict.area),
        make("p", {}, verdict.words), make("small", {}, verdict.threshold)));
    }
    const bad = log.verdicts.filter((v) => v.grade === "poor" || v.grade === "fair");
    main.append(make("p", {class: "lead"}, bad.length === 0 ? "The data are good in all areas."
      : "Look at: " + bad.map((v) => v.area.toLowerCase() + " (" + v.grade + ")").join(", ") + "."), grid);
  };

  const showFindings = (log) => {
    if (log.findings.length === 0) {
      section("Findings", make("p", {id: "findings"}, log.first === null ? "There are no epochs." : "Nothing conspicuous was found."));
      return;
    }
    const seconds = (finding) => (finding.end.week - finding.start.week) * 604800 +
      finding.end.tow - finding.start.tow;
    section("Findings", table("findings", ["Start (GPS time)", "Seconds", "Kind", "What"],
      log.findings.map((finding) => [shortTime(finding.start), Math.round(seconds(finding) * 1000) / 1000,
        finding.kind.replaceAll("_", " "), finding.text]), ["time"]));
  };

  // Seconds of a finding since the origin of the plots.
  const gpsEpoch = 315964800;
  const secondsOf = (time, origin) => time.week * 604800 + time.tow + gpsEpoch - origin;

  const withGaps = (series, origin) => {
    const t = [], mean = [], low = [], high = [];
    const steps = series.t.slice(1).map((x, i) => x - series.t[i]).sort((a, b) => a - b);
    const usual = Math.max(series.width, steps.length ? steps[steps.length >> 1] : 1);
    series.t.forEach((x, i) => {
      if (i > 0 && x - series.t[i - 1] > 3 * usual) {
        t.push(series.t[i - 1] + usual + origin);
        mean.push(null); low.push(null); high.push(null);
      }
      t.push(x + origin);
      mean.push(series.mean[i]);
      low.push(series.min ? series.min[i] : series.mean[i]);
      high.push(series.max ? series.max[i] : series.mean[i]);
    });
    return [t, mean, low, high];
  };

  const markFindings = (log, origin) => (plot) => {
    const context = plot.ctx;
    context.save();
    context.beginPath();
    context.rect(plot.bbox.left, plot.bbox.top, plot.bbox.width, plot.bbox.height);
    context.clip();
    context.fillStyle = style("--mark");
    for (const finding of log.findings) {
      const left = plot.valToPos(secondsOf(finding.start, origin) + origin, "x", true);
      const right = plot.valToPos(secondsOf(finding.end, origin) + origin, "x", true);
      context.fillRect(left, plot.bbox.top, Math.max(right - left, 2), plot.bbox.height);
    }
    context.restore();
  };

  // Smallest step in seconds, label, and what is added where the day or the year changes.
  const day = "\n{YYYY}-{MM}-{DD}";
  const timeLabels = [
    [86400, "{MM}-{DD}", "\n{YYYY}", null, null, null, null, null, 1],
    [60, "{HH}:{mm}", day, null, day, null, null, null, 1],
    [1, "{HH}:{mm}:{ss}", day, null, day, null, null, null, 1],
    [0.001, "{ss}.{fff}", day + " {HH}:{mm}", null, day + " {HH}:{mm}", null, "\n{HH}:{mm}", null, 1],
  ];

  const drawPlot = (log, plot, range) => {
    const origin = log.pictures.origin;
    const joined = uPlot.join(plot.series.map((each) => withGaps(each, origin)));
    const series = [{value: (u, x) => x === null ? "" : new Date(x * 1000).toISOString().slice(0, 19).replace("T", " ")}];
    const bands = [];
    plot.series.forEach((each, i) => {
      const stroke = colorOf(each.name, i);
      const at = series.length;
      series.push({label: each.name, stroke, width: 1.5, points: {show: each.t.length < 60},
        value: (u, x) => x === null || x === undefined ? "" : numberText(x)});
      series.push({class: "band", width: 0, points: {show: false}});
      series.push({class: "band", width: 0, points: {show: false}});
      bands.push({series: [at + 2, at + 1], fill: stroke + "40"});
    });
    const axis = {stroke: style("--faint"), grid: {stroke: style("--line"), width: 1},
      ticks: {stroke: style("--line"), width: 1}};
    const holder = make("div", {class: "plot", "data-plot": plot.key},
      make("h3", {}, plot.title + (plot.unit ? " (" + plot.unit + ")" : "")));
    main.append(holder);
    const chart = new uPlot({
      width: holder.clientWidth - 24, height: 200, series, bands,
      tzDate: (x) => uPlot.tzDate(new Date(x * 1000), "Etc/UTC"),
      scales: {x: {min: range[0], max: range[1]}},
      axes: [{...axis, values: timeLabels}, {...axis, size: 56, ...(/^(satellites|used)/.test(plot.key) ? {incrs: [1, 2, 5, 10, 20, 50]} : {})}],
      cursor: {sync: {key: "time", scales: ["x", null]}, drag: {x: true, y: false}},
      hooks: {
        drawClear: [markFindings(log, origin)],
        setSeries: [(u, at, options) => {
          if (at === null || options.show === undefined || at % 3 !== 1) return;
          u.setSeries(at + 1, {show: options.show});
          u.setSeries(at + 2, {show: options.show});
        }],
      },
    }, joined, holder);
    plots.push(chart);
    holder.chart = chart;
  };

  const showPlots = (log) => {
    const pictures = log.pictures;
    if (pictures.plots.length === 0) return;
    section("Over time", make("p", {class: "faint"},
      "Lines are means, bands reach from the least to the largest value; findings are shaded. GPS time."));
    const ends = pictures.plots.flatMap((p) => p.series.flatMap((s) => s.t.length ? [s.t[0], s.t[s.t.length - 1]] : []));
    const range = [Math.min(...ends) + pictures.origin, Math.max(...ends) + pictures.origin];
    for (const plot of pictures.plots) drawPlot(log, plot, range);
  };

  const svg = (tag, options, text) => {
    const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
    for (const [name, value] of Object.entries(options)) element.setAttribute(name, value);
    if (text) element.textContent = text;
    return element;
  };

  const skyOf = (system, tracks) => {
    const picture = svg("svg", {viewBox: "0 0 220 220", role: "img", "aria-label": "Sky plot of " + systems[system]});
    const radius = (elevation) => 95 * (90 - elevation) / 90;
    for (const elevation of [0, 30, 60]) {
      picture.append(svg("circle", {cx: 110, cy: 110, r: radius(elevation)}),
        svg("text", {x: 112, y: 110 - radius(elevation) + 9}, elevation + "\u00b0"));
    }
    picture.append(svg("line", {x1: 110, x2: 110, y1: 15, y2: 205}), svg("line", {x1: 15, x2: 205, y1: 110, y2: 110}));
    [["N", 106, 11], ["E", 208, 113], ["S", 107, 216], ["W", 2, 113]].forEach(([text, x, y]) =>
      picture.append(svg("text", {x, y}, text)));
    const stroke = color(Object.keys(systems).indexOf(system));
    for (const track of tracks) {
      let path = "", last = null, x = 0, y = 0;
      for (let i = 0; i < track.points.length; i += 3) {
        const [time, azimuth, elevation] = track.points.slice(i, i + 3);
        x = 110 + radius(elevation) * Math.sin(azimuth * Math.PI / 180);
        y = 110 - radius(elevation) * Math.cos(azimuth * Math.PI / 180);
        path += (last === null || time - last > 5400 ? "M" : "L") + x.toFixed(1) + " " + y.toFixed(1);
        last = time;
      }
      const line = svg("path", {d: path, fill: "none", stroke, "stroke-width": 1.4});
      line.append(svg("title", {}, track.satellite));
      picture.append(line, svg("circle", {cx: x, cy: y, r: 2, style: "fill:" + stroke + ";stroke:none"}),
        svg("text", {x: x + 3, y: y + 3, class: "name"}, track.satellite.slice(1)));
    }
    return make("div", {class: "plot", "data-sky": system}, make("h3", {}, systems[system]), picture);
  };

  const showSky = (log) => {
    const sky = make("div", {class: "sky"});
    for (const system of Object.keys(systems)) {
      const tracks = log.pictures.sky.filter((track) => track.satellite[0] === system);
      if (tracks.length) sky.append(skyOf(system, tracks));
    }
    if (sky.children.length) section("Sky", sky);
  };

  const showElevation = (log) => {
    const lines = log.signals.filter((s) => s.cn0_by_elevation.some(isNumber));
    if (lines.length === 0) return;
    section("C/N0 by elevation");
    const holder = make("div", {class: "plot", "data-plot": "cn0_by_elevation"}, make("h3", {}, "Mean C/N0 (dB-Hz) by elevation (degrees)"));
    main.append(holder);
    const axis = {stroke: style("--faint"), grid: {stroke: style("--line"), width: 1}, ticks: {stroke: style("--line"), width: 1}};
    const middle = lines[0].cn0_by_elevation.map((_, i) => i * 10 + 5);
    new uPlot({width: holder.clientWidth - 24, height: 240, scales: {x: {time: false, range: [0, 90]}},
      series: [{label: "elevation"}, ...lines.map((s, i) => ({label: s.system + " " + s.signal, stroke: color(i), width: 1.5,
        dash: i >= 8 ? [5, 4] : [], spanGaps: true, value: (u, x) => x === null || x === undefined ? "" : numberText(x)}))],
      axes: [axis, {...axis, size: 56}]}, [middle, ...lines.map((s) => s.cn0_by_elevation)], holder);
  };

  // Tables of the main antenna, or with its number in the name of another.
  const showTables = (of, suffix, title) => {
    if (of.signals.length) {
      section("Signals" + title, table("signals" + suffix, ["System", "Signal", "Observations", "C/N0 dB-Hz", "Deviation dB", "Multipath m", "Slips"],
        of.signals.map((s) => [systems[s.system], s.signal, s.observations, s.cn0, s.cn0_deviation, s.multipath, s.slips])));
    }
    if (of.satellites.length) {
      section("Satellites" + title, table("satellites" + suffix, ["Satellite", "Epochs", "Highest \u00b0", "C/N0 dB-Hz", "Multipath m", "Slips"],
        of.satellites.map((s) => [s.satellite, s.epochs, s.highest, s.cn0, s.multipath, s.slips])));
    }
  };

  const labelOf = (figure) => figure.key + (figure.unit ? " (" + figure.unit + ")" : "");

  const showAntennas = (log) => {
    if (log.other_antennas.length === 0) return;
    const shared = data.definitions.filter((figure) => figure.of_antenna);
    section("Antennas", table("antennas", ["Figure", "Main", ...log.other_antennas.map((each) => "Antenna " + each.antenna)],
      shared.map((figure) => [labelOf(figure), log.figures[figure.key], ...log.other_antennas.map((each) => each.figures[figure.key])])));
    [...document.querySelectorAll("#antennas tbody tr")].forEach((row, i) => { row.dataset.key = shared[i].key; });
  };

  const showFigures = () => {
    const rows = data.definitions.map((figure) => [labelOf(figure),
      ...data.logs.map((log) => log.figures[figure.key]), figure.definition]);
    const heads = ["Figure", ...data.logs.map((log) => data.logs.length > 1 ? log.name : "Value"), "What it is"];
    section(data.logs.length > 1 ? "Logs side by side" : "Figures", table("figures", heads, rows));
    [...document.querySelectorAll("#figures tbody tr")].forEach((row, i) => { row.dataset.key = data.definitions[i].key; });
  };

  const showComparison = () => {
    const areas = data.logs[0].verdicts.map((v) => v.area);
    const holder = table("comparison", ["Log", "First epoch", ...areas],
      data.logs.map((log) => [log.name, shortTime(log.first), ...log.verdicts.map((v) => v.grade)]));
    for (const row of holder.querySelectorAll("tbody tr")) {
      [...row.children].slice(2).forEach((cell) => cell.classList.add(cell.textContent));
    }
    main.append(holder);
    const tabs = make("div", {class: "tabs"});
    data.logs.forEach((log, i) => {
      const button = make("button", {type: "button", "aria-pressed": String(i === shown)}, log.name);
      button.addEventListener("click", () => { shown = i; show(); });
      tabs.append(button);
    });
    main.append(tabs);
  };

  const show = () => {
    plots.forEach((plot) => plot.destroy());
    plots = [];
    main.replaceChildren();
    const log = data.logs[shown];
    main.append(make("h1", {}, "Quality report"));
    if (data.logs.length > 1) showComparison();
    const what = [log.marker, log.receiver, log.antenna].filter((text) => text).join(" \u00b7 ");
    main.append(make("h2", {}, log.name), make("div", {class: "faint"}, what),
      make("div", {class: "faint"}, log.first === null ? "" : shortTime(log.first) + " to " + shortTime(log.last) + " GPS"),
      make("div", {class: "faint", id: "elevations"}, log.elevations));
    if (data.requirement !== null) {
      main.append(make("p", {id: "requirement", class: log.failures.length ? "poor" : "good"},
        "Requirement " + data.requirement + (log.failures.length ? " is not met: " + log.failures.join("; ") : " is met.")));
    }
    showVerdicts(log);
    showFindings(log);
    showPlots(log);
    showSky(log);
    showElevation(log);
    showAntennas(log);
    showTables(log, "", "");
    for (const other of log.other_antennas) showTables(other, "_" + other.antenna, " of antenna " + other.antenna);
    showFigures();
    document.title = "Quality report: " + data.logs.map((each) => each.name).join(", ");
  };

  show();
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", show);
  let resizing = 0, width = innerWidth;
  addEventListener("resize", () => {
    if (innerWidth === width) return;
    width = innerWidth;
    clearTimeout(resizing);
    resizing = setTimeout(show, 150);
  });
  // Paper is white.
  addEventListener("beforeprint", () => { document.documentElement.dataset.theme = "light"; show(); });
  addEventListener("afterprint", () => { delete document.documentElement.dataset.theme; show(); });
})();
