#!/usr/bin/env node
// The page of quorl --serve in a real browser (Debian's chromium through
// playwright-core): a dropped sample gives the quiet run's D and table with
// the same seed, a click on a point refits over the remaining sizes, the
// downloads open, and the page fits a phone's screen. Screenshots go to
// $QUORL_SCREENSHOTS (docs/ for the README) or a temporary directory.
'use strict';
const { spawn, execFileSync } = require('child_process');
const fs = require('fs'), os = require('os'), path = require('path');

const prog = path.resolve(process.argv[2]), chromium = '/usr/bin/chromium';
let pw;
try { pw = require('playwright-core'); } catch (e) { console.log('skipped: no playwright-core (npm ci)'); process.exit(77); }
if (!fs.existsSync(chromium)) { console.log('skipped: no ' + chromium); process.exit(77); }
const tmp = fs.mkdtempSync(path.join(os.tmpdir(), 'quorl-browser-'));
const shots = process.env.QUORL_SCREENSHOTS || tmp;
let failures = 0;
function check(id, ok, detail) {
  if (!ok) { failures++; console.log(`FAIL ${id}: ${detail === undefined ? '' : JSON.stringify(detail)}`); }
}

// The quiet run's table (size, count) and printed estimate.
const quiet = execFileSync(prog, ['-q', '-i', 'examples/carpet.tga', '--seed', '7']).toString().trim().split('\n');
const table = quiet.filter((l) => /^\d+ \d+ /.test(l)).map((l) => l.split(' ').slice(0, 2).map(Number));
const estimate = quiet[quiet.length - 1].split(':')[1].trim();

async function drop(page, file) {  // as a user's drag and drop of a file onto the target
  const data = fs.readFileSync(file).toString('base64');
  const dt = await page.evaluateHandle(([b64, name]) => {
    const t = new DataTransfer();
    t.items.add(new File([Uint8Array.from(atob(b64), (c) => c.charCodeAt(0))], name));
    return t;
  }, [data, path.basename(file)]);
  await page.dispatchEvent('#drop', 'drop', { dataTransfer: dt });
}

async function download(page, selector) {
  const [d] = await Promise.all([page.waitForEvent('download'), page.click(selector)]);
  const to = path.join(tmp, d.suggestedFilename());
  await d.saveAs(to);
  return to;
}

(async () => {
  const server = spawn(prog, ['--serve', '--port', '0'], { stdio: ['ignore', 'pipe', 'inherit'] });
  const url = await new Promise((ok) => server.stdout.once('data', (b) => ok(String(b).match(/http:\S+/)[0])));
  process.on('exit', () => server.kill('SIGKILL'));  // never left behind, whatever fails
  const browser = await pw.chromium.launchPersistentContext(path.join(tmp, 'profile'), {  // a fresh profile
    executablePath: chromium, viewport: { width: 1280, height: 1000 }, acceptDownloads: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'] });
  try {
    const page = await browser.newPage();
    page.setDefaultTimeout(60000);
    await page.goto(url);

    // browser-1: while counting, the boxes of the current grid and the progress line.
    await page.fill('input[name=samples]', '100000');
    await drop(page, 'examples/carpet.tga');
    await page.waitForFunction(() => window.quorl.boxes.length > 300 && window.quorl.size > 20 && window.quorl.size < 40);
    check('browser-1.1 progress', /^Counting: box size \d+ px, pass \d+ of 100000/.test(
      await page.textContent('#progress')));
    await page.screenshot({ path: path.join(shots, 'serve-counting.png') });
    await page.click('#stop');

    // browser-2: the finished analysis equals the quiet run with the same seed.
    await page.fill('input[name=samples]', '10');
    await page.fill('input[name=seed]', '7');
    await drop(page, 'examples/carpet.tga');
    await page.waitForSelector('#result:not([hidden])');
    check('browser-2.1 D', (await page.textContent('#dimension')) === estimate, estimate);
    const rows = await page.$$eval('#table tbody tr', (trs) => trs.map((tr) =>
      [...tr.cells].slice(1, 3).map((c) => Number(c.textContent))));
    check('browser-2.2 table', JSON.stringify(rows) === JSON.stringify(table), rows);

    // browser-3: a click on the first point leaves it out; D is the fit over the rest.
    await page.locator('#plot').scrollIntoViewIfNeeded();
    const at = await page.evaluate(() => window.quorl.pointAt(0));
    await page.mouse.click(at.x, at.y);
    const rest = table.slice(1).map(([s, n]) => [-Math.log(s), Math.log(n)]);
    const mx = rest.reduce((a, p) => a + p[0], 0) / rest.length, my = rest.reduce((a, p) => a + p[1], 0) / rest.length;
    const slope = rest.reduce((a, p) => a + (p[0] - mx) * (p[1] - my), 0) / rest.reduce((a, p) => a + (p[0] - mx) ** 2, 0);
    const shown = Number(await page.getAttribute('#dimension', 'data-value'));
    check('browser-3.1 refit', Math.abs(shown - slope) < 1e-9, [shown, slope]);
    await page.screenshot({ path: path.join(shots, 'serve-finished.png'), fullPage: true });
    check('browser-3.2 left out', await page.$eval('#table tbody tr', (tr) => tr.className === 'out'));

    // browser-4: the downloads open.
    const report = JSON.parse(fs.readFileSync(await download(page, '#dl-json')));
    check('browser-4.1 JSON', report.fit.dimension.toFixed(3) === estimate, report.fit);
    const svg = await download(page, '#dl-svg');
    execFileSync('rsvg-convert', ['-o', path.join(tmp, 'plot.png'), svg]);
    check('browser-4.2 SVG renders', fs.statSync(path.join(tmp, 'plot.png')).size > 1000);
    const csv = fs.readFileSync(await download(page, '#dl-csv')).toString().trim().split('\r\n');
    check('browser-4.3 CSV', csv.length === table.length + 1 && csv[1].endsWith(',0'), csv.slice(0, 2));

    // browser-5: on a phone's screen nothing runs off to the side.
    await page.setViewportSize({ width: 390, height: 844 });
    const fits = await page.waitForFunction(() => document.documentElement.scrollWidth <= 390, null, { timeout: 5000 })
      .then(() => true, () => false);
    check('browser-5.1 phone', fits, await page.evaluate(() => [...document.querySelectorAll('*')]
      .filter((e) => e.getBoundingClientRect().right > 391).map((e) => e.tagName + '#' + e.id + '.' + e.className)));
  } finally {
    await browser.close();
    server.kill('SIGTERM');
  }
  const status = await new Promise((ok) => server.on('exit', ok));
  check('browser-6.1 server stops cleanly', status === 0, status);
  fs.rmSync(tmp, { recursive: true, force: true });
  console.log(failures ? `${failures} failed` : 'all passed');
  process.exit(failures ? 1 : 0);
})().catch((e) => { console.log('FAIL: ' + e.stack); process.exit(1); });
