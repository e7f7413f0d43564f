// The viewer's page: asks the server for the newest image as soon as it has shown the last
// one, so the browser never falls behind the camera; polls the counters and the features.
'use strict';

const token = new URLSearchParams(location.search).get('token');
const $ = (id) => document.getElementById(id);
const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Every request carries the access token the page was opened with.
function url(path, params = {}) {
  const query = new URLSearchParams(params);
  if (token) query.set('token', token);
  const text = query.toString();
  return text ? `${path}?${text}` : path;
}

async function answer(response) {
  const body = await response.json().catch(() => ({}));
  if (!response.ok) throw new Error(body.error || `${response.status} ${response.statusText}`);
  return body;
}

const getJson = async (path) => answer(await fetch(url(path)));
const postJson = async (path, data) =>
  answer(await fetch(url(path), {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify(data),
  }));

function showMessage(text) {
  $('message').textContent = text || '';
}

function element(tag, properties = {}, children = []) {
  const node = Object.assign(document.createElement(tag), properties);
  node.append(...children);
  return node;
}

// ---- choosing a camera

async function openCamera(serial) {
  try {
    await postJson('/api/open', { serial });
    startViewer();
  } catch (error) {
    showMessage(error.message);
  }
}

function showChooser(cameras) {
  $('chooser').hidden = false;
  for (const camera of cameras) {
    const open = element('button', { type: 'button', textContent: 'Open' });
    open.addEventListener('click', () => openCamera(camera.serial));
    const cells = [camera.model, camera.serial, camera.vendor, camera.ip, camera.name];
    $('camera-list').append(element('tr', {}, [
      ...cells.map((text) => element('td', { textContent: text })),
      element('td', {}, [open]),
    ]));
  }
}

// ---- the live image

const shownTimes = [];

async function frameLoop() {
  const canvas = $('view');
  const context = canvas.getContext('2d');
  let after = 0;
  for (;;) {
    try {
      const response = await fetch(url('/api/frame', { after }));
      if (response.status !== 200) {
        if (response.status !== 204) await sleep(1000);
        continue;
      }
      after = Number(response.headers.get('X-Frame-Sequence'));
      const bitmap = await createImageBitmap(await response.blob());
      if (canvas.width !== bitmap.width || canvas.height !== bitmap.height) {
        canvas.width = bitmap.width;
        canvas.height = bitmap.height;
      }
      context.drawImage(bitmap, 0, 0);
      bitmap.close();
      canvas.dataset.sequence = after;
      shownTimes.push(performance.now());
    } catch (error) {
      await sleep(1000); // the server is gone or restarting
    }
  }
}

function shownPerSecond() {
  const now = performance.now();
  while (shownTimes.length && shownTimes[0] < now - 1000) shownTimes.shift();
  return shownTimes.length;
}

function drawHistogram(channels) {
  const canvas = $('histogram');
  const context = canvas.getContext('2d');
  context.clearRect(0, 0, canvas.width, canvas.height);
  if (!channels) return;
  const colours = channels.length === 1 ? ['#d0d0d0'] : ['#ff5050', '#50e050', '#5080ff'];
  // Logarithmic, so that a few large peaks (black, saturated) leave the rest readable.
  const highest = Math.log1p(Math.max(1, ...channels.flat()));
  context.globalCompositeOperation = 'lighter';
  channels.forEach((bins, channel) => {
    context.fillStyle = colours[channel];
    bins.forEach((count, level) => {
      const height = (Math.log1p(count) / highest) * canvas.height;
      context.fillRect(level, canvas.height - height, 1, height);
    });
  });
  context.globalCompositeOperation = 'source-over';
}

function showStatus(status) {
  $('camera').textContent = `${status.camera.model} ${status.camera.serial}`;
  $('shown-fps').textContent = shownPerSecond();
  $('camera-fps').textContent = status.fps.toFixed(1);
  $('megabytes').textContent = status.megabytesPerSecond.toFixed(1);
  for (const key of ['images', 'lost', 'incomplete', 'skipped']) $(key).textContent = status[key];
  const frame = status.frame;
  $('format').textContent = frame
    ? `${frame.width} × ${frame.height} ${frame.pixelFormat}, frame ${frame.frameId}` : 'none yet';
  drawHistogram(frame && frame.histogram);
  $('start').disabled = status.acquiring;
  $('stop').disabled = !status.acquiring;
  if (status.problem) showMessage(status.problem);
}

async function statusLoop() {
  for (;;) {
    try {
      showStatus(await getJson('/api/status'));
    } catch (error) {
      showMessage(error.message);
    }
    await sleep(500);
  }
}

// ---- the feature tree

const controls = new Map(); // feature name -> { row, input, error }

async function writeFeature(control, value) {
  try {
    const state = await postJson('/api/feature', { name: control.name, value: String(value) });
    control.error.textContent = '';
    applyState(control, state);
  } catch (error) {
    control.error.textContent = error.message;
  }
}

async function executeFeature(control) {
  try {
    await postJson('/api/command', { name: control.name });
    control.error.textContent = '';
  } catch (error) {
    control.error.textContent = error.message;
  }
}

function makeInput(control, feature) {
  switch (feature.type) {
    case 'Integer':
    case 'Float':
      return element('input', { type: 'number' });
    case 'String':
      return element('input', { type: 'text' });
    case 'Boolean':
      return element('input', { type: 'checkbox' });
    case 'Enumeration':
      return element('select');
    case 'Command': {
      const button = element('button', { type: 'button', textContent: 'Execute' });
      button.addEventListener('click', () => executeFeature(control));
      return button;
    }
    default:
      return element('span', { textContent: '—' });
  }
}

function featureRow(feature) {
  const control = { name: feature.name, type: feature.type, tip: feature.tip || '' };
  control.input = makeInput(control, feature);
  control.input.id = `feature-${feature.name}`;
  control.error = element('span', { className: 'error' });
  control.unit = element('span', { className: 'unit' });
  control.row = element('div', { className: 'feature' }, [
    element('label', { htmlFor: control.input.id, textContent: feature.name }),
    element('span', { className: 'control' }, [control.input, control.unit]),
    control.error,
  ]);
  control.row.dataset.name = feature.name;
  control.row.dataset.visibility = { Beginner: 0, Expert: 1, Guru: 2 }[feature.visibility] ?? 3;
  if (feature.type !== 'Command') {
    control.input.addEventListener('change', () => writeFeature(control,
      feature.type === 'Boolean' ? (control.input.checked ? '1' : '0') : control.input.value));
  }
  controls.set(feature.name, control);
  applyState(control, feature);
  return control.row;
}

function setEntries(select, entries, value) {
  const names = entries.includes(value) || value === undefined ? entries : [...entries, value];
  if ([...select.options].map((option) => option.value).join() !== names.join()) {
    select.replaceChildren(...names.map((name) => element('option', { value: name, textContent: name })));
  }
}

// Shows a feature's state; the field the user is typing into keeps what they typed.
function applyState(control, state) {
  const input = control.input;
  const available = state.access !== 'NA' && state.access !== 'NI';
  const writable = state.access === 'RW' || state.access === 'WO' || state.lockedByStream === true;
  control.row.classList.toggle('unavailable', !available);
  control.row.classList.toggle('readonly', !writable);
  control.row.title = state.lockedByStream
    ? 'Changing this stops the stream for a moment' : control.tip;
  if (control.type === 'Command') {
    input.disabled = !writable;
    return;
  }
  if (!('disabled' in input)) return;
  input.disabled = !writable;
  control.unit.textContent = state.unit || '';
  if (state.min !== undefined) input.min = state.min;
  if (state.max !== undefined) input.max = state.max;
  if (input.type === 'number') input.step = state.inc !== undefined ? state.inc : 'any';
  if (control.type === 'Enumeration') setEntries(input, state.entries || [], state.value);
  if (document.activeElement === input || state.value === undefined) return;
  if (input.type === 'checkbox') input.checked = state.value === '1' || state.value === 'true';
  else input.value = state.value;
}

function buildTree(features, parent) {
  for (const feature of features) {
    if (feature.type !== 'Category') {
      parent.append(featureRow(feature));
      continue;
    }
    const group = element('details', { open: true }, [element('summary', { textContent: feature.name })]);
    group.dataset.category = feature.name;
    buildTree(feature.features, group);
    parent.append(group);
  }
}

function applyVisibility() {
  const level = Number($('visibility').value);
  for (const control of controls.values()) {
    control.row.hidden = Number(control.row.dataset.visibility) > level;
  }
  // Innermost categories first, so that an outer one sees whether its inner ones show.
  const groups = [...$('tree').querySelectorAll('details')].reverse();
  for (const group of groups) group.hidden = !group.querySelector('.feature:not([hidden])');
}

function forEachFeature(features, action) {
  for (const feature of features) {
    if (feature.type === 'Category') forEachFeature(feature.features, action);
    else action(feature);
  }
}

async function featureLoop() {
  let built = false;
  for (;;) {
    try {
      const features = await getJson('/api/features');
      let known = built;
      forEachFeature(features, (feature) => { known = known && controls.has(feature.name); });
      if (!known) {
        controls.clear();
        $('tree').replaceChildren();
        buildTree(features, $('tree'));
        applyVisibility();
        built = true;
      } else {
        forEachFeature(features, (feature) => applyState(controls.get(feature.name), feature));
      }
    } catch (error) {
      showMessage(error.message);
    }
    await sleep(1000);
  }
}

// ---- toolbar

function onClick(id, action) {
  $(id).addEventListener('click', async () => {
    try {
      showMessage('');
      await action();
    } catch (error) {
      showMessage(error.message);
    }
  });
}

function setUpControls() {
  $('controls').hidden = false;
  onClick('start', () => postJson('/api/acquisition', { action: 'start' }));
  onClick('stop', () => postJson('/api/acquisition', { action: 'stop' }));
  onClick('single', () => postJson('/api/acquisition', { action: 'single' }));
  onClick('trigger', () => postJson('/api/command', { name: 'TriggerSoftware' }));
  $('save-image').href = url('/api/image.png');
  $('save-settings').href = url('/api/settings');
  $('load-settings').addEventListener('change', async (event) => {
    const file = event.target.files[0];
    event.target.value = '';
    if (!file) return;
    try {
      await postJson('/api/settings', { content: await file.text() });
      showMessage(`loaded ${file.name}`);
    } catch (error) {
      showMessage(error.message);
    }
  });
  $('visibility').addEventListener('change', applyVisibility);
}

function startViewer() {
  $('chooser').hidden = true;
  $('viewer').hidden = false;
  setUpControls();
  frameLoop();
  statusLoop();
  featureLoop();
}

async function main() {
  try {
    const list = await getJson('/api/cameras');
    if (list.open) startViewer();
    else showChooser(list.cameras);
  } catch (error) {
    showMessage(error.message);
  }
}

main();
