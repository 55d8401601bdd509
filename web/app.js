// The page of quorl --serve: sends an image with the options, draws the boxes
// of the grid being counted as the server reports them, then shows the
// log-log plot and lets the user choose which sizes enter the fit. The fit
// over a choice of sizes is refitted here, at once, without recounting.
'use strict';

const $ = (id) => document.getElementById(id);
const state = {
  file: null, id: null, events: null, job: null,
  bw: null, scale: 1, boxes: [], size: 0, drawQueued: false,
  report: null, t975: null, inFit: [], asReported: true, plot: null,
};
window.quorl = state;  // for the console (and the browser test)

// ---- starting, watching, stopping -----------------------------------------

function setProgress(text, isError) {
  $('progress').textContent = text;
  $('progress').classList.toggle('error', !!isError);
}

function queryOf(name) {
  const q = new URLSearchParams();
  for (const [k, v] of new FormData($('options'))) {
    if (k === 'invert' || k === 'crop') q.set(k, '1');
    else if (String(v).trim() !== '') q.set(k, String(v).trim());
  }
  q.set('name', name);
  return q;
}

async function start() {
  if (!state.file) return;
  stop(false);
  $('result').hidden = true;
  $('run').disabled = false;
  setProgress('Sending ' + state.file.name + ' ...');
  let res, body;
  try {
    res = await fetch('api/analyses?' + queryOf(state.file.name), {
      method: 'POST', body: state.file, headers: { 'Content-Type': 'application/octet-stream' } });
    body = await res.json();
  } catch (e) {
    return setProgress('The server cannot be reached: ' + e.message, true);
  }
  if (!res.ok) return setProgress(state.file.name + ': ' + body.error, true);
  state.id = body.id;
  state.job = await (await fetch('api/analyses/' + body.id)).json();
  await loadImage(body.id);
  watch(body.id);
}

function watch(id) {
  const es = new EventSource('api/analyses/' + id + '/events');
  state.events = es;
  $('stop').disabled = false;
  es.addEventListener('progress', (e) => {
    const d = JSON.parse(e.data);
    if (d.reset) state.boxes = [];
    for (const v of d.boxes) state.boxes.push(v);
    state.size = d.size;
    setProgress(`Counting: box size ${d.size} px, pass ${d.pass} of ${d.passes} (grid ${d.grid}), ` +
                `${d.count} boxes occupied`);
    queueDraw();
  });
  es.addEventListener('finished', () => { closeEvents(); showResult(id); });
  es.addEventListener('failed', (e) => { closeEvents(); setProgress(JSON.parse(e.data).error, true); });
}

function closeEvents() {
  if (state.events) state.events.close();
  state.events = null;
  $('stop').disabled = true;
}

function stop(say) {
  if (!state.events) return;
  closeEvents();
  fetch('api/analyses/' + state.id, { method: 'DELETE' });
  if (say) setProgress('Stopped.');
}

// ---- the image and its boxes ----------------------------------------------

async function loadImage(id) {
  const bytes = new Uint8Array(await (await fetch('api/analyses/' + id + '/image.pbm')).arrayBuffer());
  const head = new TextDecoder().decode(bytes.subarray(0, 40)).match(/^P4\s+(\d+)\s+(\d+)\s/);
  const w = +head[1], h = +head[2], stride = (w + 7) >> 3, at = head[0].length;
  const off = document.createElement('canvas');
  off.width = w; off.height = h;
  const ctx = off.getContext('2d');
  const img = ctx.createImageData(w, h);
  for (let y = 0; y < h; y++) {
    for (let x = 0; x < w; x++) {
      const v = bytes[at + y * stride + (x >> 3)] & (0x80 >> (x & 7)) ? 0 : 255;
      const p = 4 * (y * w + x);
      img.data[p] = img.data[p + 1] = img.data[p + 2] = v;
      img.data[p + 3] = 255;
    }
  }
  ctx.putImageData(img, 0, 0);
  state.bw = off;
  state.scale = 1;  // a power of two that brings the longer side to 1200 pixels or less
  while (Math.max(w, h) / state.scale > 1200) state.scale *= 2;
  $('image').width = Math.ceil(w / state.scale);
  $('image').height = Math.ceil(h / state.scale);
  state.boxes = [];
  queueDraw();
}

function queueDraw() {
  if (state.drawQueued) return;
  state.drawQueued = true;
  requestAnimationFrame(draw);
}

function draw() {
  state.drawQueued = false;
  const c = $('image'), ctx = c.getContext('2d'), k = 1 / state.scale, H = c.height;
  if (!state.bw) return;
  ctx.drawImage(state.bw, 0, 0, c.width, c.height);
  const r = state.job.region, s = state.size;
  ctx.save();
  ctx.beginPath();  // boxes are cut to the region; y counts up from the bottom
  ctx.rect(r.left * k, H - r.top * k, (r.right - r.left) * k, (r.top - r.bottom) * k);
  ctx.clip();
  ctx.fillStyle = 'rgba(0, 255, 0, 0.4)';
  for (let i = 0; i < state.boxes.length; i += 2)
    ctx.fillRect(state.boxes[i] * k, H - (state.boxes[i + 1] + s) * k, s * k, s * k);
  if (s * k > 4) {
    ctx.strokeStyle = '#ff0000';
    ctx.lineWidth = 1;
    for (let i = 0; i < state.boxes.length; i += 2)
      ctx.strokeRect(state.boxes[i] * k + 0.5, H - (state.boxes[i + 1] + s) * k + 0.5, s * k - 1, s * k - 1);
  }
  ctx.restore();
  if (r.left > 0 || r.bottom > 0 || r.right < state.job.width || r.top < state.job.height) {
    ctx.strokeStyle = '#1f6feb';
    ctx.setLineDash([6, 4]);
    ctx.strokeRect(r.left * k, H - r.top * k, (r.right - r.left) * k, (r.top - r.bottom) * k);
    ctx.setLineDash([]);
  }
}

// ---- the result: fit, plot, table, downloads ------------------------------

// Least squares over the chosen points, with the 95% interval of the slope
// from Student's t with n - 2 degrees of freedom (quantiles from the server).
function fitLine(points) {
  const n = points.length;
  if (n < 2) return null;
  const mx = points.reduce((a, p) => a + p.ln_inv_size, 0) / n;
  const my = points.reduce((a, p) => a + p.ln_count, 0) / n;
  let sxx = 0, sxy = 0, syy = 0;
  for (const p of points) {
    const dx = p.ln_inv_size - mx, dy = p.ln_count - my;
    sxx += dx * dx; sxy += dx * dy; syy += dy * dy;
  }
  if (sxx === 0) return null;
  const slope = sxy / sxx, intercept = my - slope * mx;
  let sse = 0;
  for (const p of points) sse += (p.ln_count - intercept - slope * p.ln_inv_size) ** 2;
  const fit = { slope, intercept, r2: syy > 0 ? 1 - sse / syy : 1, n, ci: null };
  if (n >= 3) {
    const se = Math.sqrt(sse / (n - 2) / sxx), t = state.t975[n - 2];
    fit.ci = [slope - t * se, slope + t * se];
  }
  return fit;
}

function currentFit() {
  const f = state.report.fit;
  if (state.asReported)
    return { slope: f.dimension, intercept: f.intercept, r2: f.r2, n: f.points, ci: f.ci95 };
  return fitLine(state.report.sizes.filter((p, i) => state.inFit[i]));
}

async function showResult(id) {
  const s = await (await fetch('api/analyses/' + id)).json();
  state.report = s.report;
  state.t975 = s.t975;
  state.inFit = s.report.sizes.map((p) => p.in_fit);
  state.asReported = true;
  state.boxes = [];
  draw();
  $('result').hidden = false;
  $('dl-json').href = 'api/analyses/' + id + '/report.json';
  $('dl-json').download = baseName(s.name) + '.json';
  makePlot();
  update();
}

function baseName(name) {
  return name.replace(/^.*[\\/]/, '').replace(/\.[^.]*$/, '') || 'quorl';
}

function update() {
  const sizes = state.report.sizes, f = currentFit();
  const d = $('dimension');
  d.textContent = f ? f.slope.toFixed(3) : '-';
  d.dataset.value = f ? f.slope : '';
  const used = state.inFit.filter(Boolean).length;
  $('stats').textContent = !f ? `Choose at least two sizes (${used} of ${sizes.length} chosen).`
    : (f.ci ? `± ${((f.ci[1] - f.ci[0]) / 2).toFixed(3)}, 95% interval ${f.ci[0].toFixed(3)} to ${f.ci[1].toFixed(3)}`
            : 'no interval with fewer than 3 sizes') +
      `; r² = ${f.r2 == null ? '-' : f.r2.toFixed(4)}; ${used} of ${sizes.length} sizes` +
      (state.asReported ? ' (as reported)' : '');
  setProgress(`Finished: ${sizes.length} box sizes, D = ${f ? f.slope.toFixed(3) : '-'}.`);
  const rows = sizes.map((p, i) => `<tr class="${state.inFit[i] ? '' : 'out'}">` +
    `<td><input type="checkbox" data-i="${i}" ${state.inFit[i] ? 'checked' : ''} aria-label="fit size ${p.size}"></td>` +
    `<td>${p.size}</td><td>${p.count}</td><td>${p.ln_inv_size.toFixed(4)}</td><td>${p.ln_count.toFixed(4)}</td></tr>`);
  $('table').tBodies[0].innerHTML = rows.join('');
  if (state.plot) state.plot.setData(plotData(f));
  $('dl-csv').href = URL.createObjectURL(new Blob([csvText()], { type: 'text/csv' }));
  $('dl-svg').href = URL.createObjectURL(new Blob([svgText(f)], { type: 'image/svg+xml' }));
}

function toggle(indices, value) {
  for (const i of indices) state.inFit[i] = value === undefined ? !state.inFit[i] : value;
  state.asReported = false;
  update();
}

function plotData(f) {
  const sz = state.report.sizes, xs = sz.map((p) => p.ln_inv_size);
  return [xs, sz.map((p, i) => (state.inFit[i] ? p.ln_count : null)),
          sz.map((p, i) => (state.inFit[i] ? null : p.ln_count)),
          xs.map((x) => (f && f.intercept != null ? f.intercept + f.slope * x : null))];
}

// A scale's range with a margin, so that no point sits on the plot's edge.
function padded(u, lo, hi) {
  const m = hi > lo ? 0.04 * (hi - lo) : 1;
  return [lo - m, hi + m];
}

function makePlot() {
  if (state.plot) state.plot.destroy();
  const box = $('plot');
  const dots = (fill) => ({ show: true, size: 10, width: 2, fill });
  const u = new uPlot({
    width: Math.max(260, box.clientWidth), height: 320,
    scales: { x: { time: false, range: padded }, y: { range: padded } },
    axes: [{ label: 'ln(1/s)' }, { label: 'ln N(s)' }],
    cursor: { drag: { x: true, y: false, setScale: false }, points: { show: false } },
    legend: { live: false },
    series: [{ label: 'ln(1/s)' },
      { label: 'in the fit', stroke: '#1f6feb', paths: () => null, points: dots('#1f6feb') },
      { label: 'left out', stroke: '#8a93a3', paths: () => null, points: dots('#ffffff') },
      { label: 'fitted line', stroke: '#d1242f', width: 2, spanGaps: true, points: { show: false } }],
    hooks: { setSelect: [(u) => {
      if (u.select.width < 5) return;
      const lo = u.posToVal(u.select.left, 'x'), hi = u.posToVal(u.select.left + u.select.width, 'x');
      const sz = state.report.sizes;
      sz.forEach((p, i) => { state.inFit[i] = p.ln_inv_size >= lo && p.ln_inv_size <= hi; });
      state.asReported = false;
      u.setSelect({ left: 0, width: 0, top: 0, height: 0 }, false);
      update();
    }] },
  }, plotData(currentFit()), box);
  // Positions from the plot area's corner: the cursor lines and the
  // selection inside it may be the events' targets.
  const at = (e) => { const r = u.over.getBoundingClientRect(); return [e.clientX - r.left, e.clientY - r.top]; };
  let down = null;
  u.over.addEventListener('mousedown', (e) => { down = at(e); });
  u.over.addEventListener('click', (e) => {
    const [x, y] = at(e);
    if (!down || Math.hypot(x - down[0], y - down[1]) > 4) return;  // the end of a drag
    const i = nearestPoint(x, y);
    if (i >= 0) toggle([i]);
  });
  state.plot = u;
}

// The point within 20 pixels of (x, y) on the plot, or -1.
function nearestPoint(x, y) {
  let best = -1, bestD = 20;
  state.report.sizes.forEach((p, i) => {
    const d = Math.hypot(state.plot.valToPos(p.ln_inv_size, 'x') - x, state.plot.valToPos(p.ln_count, 'y') - y);
    if (d < bestD) { best = i; bestD = d; }
  });
  return best;
}

// Where point i is on the screen (for the browser test, and handy by hand).
state.pointAt = (i) => {
  const p = state.report.sizes[i], r = state.plot.over.getBoundingClientRect();
  return { x: r.left + state.plot.valToPos(p.ln_inv_size, 'x'), y: r.top + state.plot.valToPos(p.ln_count, 'y') };
};

function csvText() {
  return 'size,count,ln_inv_size,ln_count,in_fit\r\n' + state.report.sizes.map((p, i) =>
    [p.size, p.count, p.ln_inv_size, p.ln_count, state.inFit[i] ? 1 : 0].join(',')).join('\r\n') + '\r\n';
}

// The plot as it stands, as a standalone SVG file.
function svgText(f) {
  const W = 640, H = 440, L = 70, R = 20, T = 50, B = 56, sz = state.report.sizes;
  const xs = sz.map((p) => p.ln_inv_size), ys = sz.map((p) => p.ln_count);
  const pad = (lo, hi) => (hi > lo ? [lo - 0.05 * (hi - lo), hi + 0.05 * (hi - lo)] : [lo - 1, hi + 1]);
  const [x0, x1] = pad(Math.min(...xs), Math.max(...xs)), [y0, y1] = pad(Math.min(...ys), Math.max(...ys));
  const X = (x) => (L + (x - x0) / (x1 - x0) * (W - L - R)).toFixed(2);
  const Y = (y) => (H - B - (y - y0) / (y1 - y0) * (H - T - B)).toFixed(2);
  const esc = (s) => s.replace(/&/g, '&amp;').replace(/</g, '&lt;');
  const title = !f ? 'D: too few sizes chosen' : `D = ${f.slope.toFixed(3)}` +
    (f.ci ? ` ± ${((f.ci[1] - f.ci[0]) / 2).toFixed(3)} (95%)` : '') + (f.r2 != null ? `, r² = ${f.r2.toFixed(4)}` : '');
  let s = `<svg xmlns="http://www.w3.org/2000/svg" width="${W}" height="${H}" viewBox="0 0 ${W} ${H}" ` +
    `font-family="sans-serif" font-size="13">\n<rect width="${W}" height="${H}" fill="#fff"/>\n` +
    `<text x="${W / 2}" y="28" text-anchor="middle" font-size="16">${esc(title)}</text>\n` +
    `<rect x="${L}" y="${T}" width="${W - L - R}" height="${H - T - B}" fill="none" stroke="#333"/>\n`;
  for (let i = 0; i <= 4; i++) {
    const xv = x0 + (x1 - x0) * i / 4, yv = y0 + (y1 - y0) * i / 4;
    s += `<text x="${X(xv)}" y="${H - B + 18}" text-anchor="middle">${xv.toFixed(2)}</text>` +
         `<text x="${L - 6}" y="${Y(yv)}" text-anchor="end" dy="4">${yv.toFixed(2)}</text>\n`;
  }
  s += `<text x="${(L + W - R) / 2}" y="${H - 12}" text-anchor="middle">ln(1/s)</text>` +
       `<text transform="translate(18 ${(T + H - B) / 2}) rotate(-90)" text-anchor="middle">ln N(s)</text>\n`;
  if (f && f.intercept != null)
    s += `<line x1="${X(x0)}" y1="${Y(f.intercept + f.slope * x0)}" x2="${X(x1)}" y2="${Y(f.intercept + f.slope * x1)}"` +
         ` stroke="#d1242f" stroke-width="2"/>\n`;
  sz.forEach((p, i) => {
    s += `<circle cx="${X(p.ln_inv_size)}" cy="${Y(p.ln_count)}" r="4.5" stroke="#1f6feb" stroke-width="1.5" ` +
         `fill="${state.inFit[i] ? '#1f6feb' : '#fff'}"><title>size ${p.size}, count ${p.count}</title></circle>\n`;
  });
  return s + '</svg>\n';
}

// ---- wiring -----------------------------------------------------------------

function choose(file) {
  if (!file) return;
  state.file = file;
  start();
}

const drop = $('drop');
for (const t of ['dragenter', 'dragover']) drop.addEventListener(t, (e) => { e.preventDefault(); drop.classList.add('over'); });
for (const t of ['dragleave', 'drop']) drop.addEventListener(t, () => drop.classList.remove('over'));
drop.addEventListener('drop', (e) => { e.preventDefault(); choose(e.dataTransfer.files[0]); });
drop.addEventListener('keydown', (e) => { if (e.key === 'Enter' || e.key === ' ') $('file').click(); });
window.addEventListener('dragover', (e) => e.preventDefault());  // a miss beside the target must not open the file
window.addEventListener('drop', (e) => e.preventDefault());
$('file').addEventListener('change', (e) => choose(e.target.files[0]));
$('options').addEventListener('submit', (e) => { e.preventDefault(); start(); });
$('stop').addEventListener('click', () => stop(true));
$('all').addEventListener('click', () => toggle(state.report.sizes.map((p, i) => i), true));
$('reset').addEventListener('click', () => {
  state.inFit = state.report.sizes.map((p) => p.in_fit);
  state.asReported = true;
  update();
});
$('table').addEventListener('change', (e) => { if (e.target.dataset.i) toggle([+e.target.dataset.i], e.target.checked); });
window.addEventListener('resize', () => {
  if (state.plot) state.plot.setSize({ width: Math.max(260, $('plot').clientWidth), height: 320 });
});
