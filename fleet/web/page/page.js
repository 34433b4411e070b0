'use strict';

// Texts of devices reach the document as text alone, so that nothing in them is ever taken for a part of the page.

const TEXTS = {
  en: {
    fleet: 'Fleet', skip: 'To the parameters', devices: 'Devices', filter: 'Search', state: 'State', all: 'all',
    online: 'online', offline: 'offline', back: 'Back', forward: 'More', hint: 'Choose a device.',
    parameterFilter: 'Search parameters', parameter: 'Parameter', value: 'Value', bounds: 'Bounds', action: 'Action',
    change: 'Change', changeOf: 'Change {0}', newValue: 'New value of {0}', set: 'Set', cancel: 'Cancel',
    count: '{0} of {1}, {2} online', connected: 'connected to the broker',
    lost: 'no connection to the broker', gone: 'no connection to legacyif-fleet',
    noDevice: 'There is no such device.', noSchemas: 'The device has not told its parameters yet.',
    incomplete: 'not everything has arrived yet', unknown: 'not known yet', nothing: 'No parameter matches.',
    waiting: 'Waiting for the device …', isSet: '{0} is set.', refused: 'The device refuses: {0}',
    noAnswer: 'The device has not answered in time; it may still set the value.',
    isOffline: 'The device is not there.', unreadable: 'That is no value of this parameter. {0}',
    noParameter: 'The device has no such parameter any more.', failed: 'That did not work: {0}',
    always: 'always {0}', range: '{0} to {1}', least: '{0} or more', most: '{0} or less',
    bytes: 'up to {0} bytes', elements: '{0} to {1} elements', elementsMost: 'up to {0} elements',
    elementsLeast: '{0} elements or more', each: 'each {0}', oneOf: 'one of {0}', members: '{0} members',
    initial: 'default {0}', number: '{0} parameters', readOnly: 'read-only',
  },
  de: {
    fleet: 'Flotte', skip: 'Zu den Parametern', devices: 'Geräte', filter: 'Suche', state: 'Zustand', all: 'alle',
    online: 'online', offline: 'offline', back: 'Zurück', forward: 'Weitere', hint: 'Ein Gerät wählen.',
    parameterFilter: 'Parameter suchen', parameter: 'Parameter', value: 'Wert', bounds: 'Grenzen', action: 'Aktion',
    change: 'Ändern', changeOf: '{0} ändern', newValue: 'Neuer Wert von {0}', set: 'Setzen', cancel: 'Abbrechen',
    count: '{0} von {1}, {2} online', connected: 'mit dem Broker verbunden',
    lost: 'keine Verbindung zum Broker', gone: 'keine Verbindung zu legacyif-fleet',
    noDevice: 'Es gibt kein solches Gerät.', noSchemas: 'Das Gerät hat seine Parameter noch nicht genannt.',
    incomplete: 'noch nicht vollständig', unknown: 'noch nicht bekannt', nothing: 'Kein Parameter passt.',
    waiting: 'Warten auf das Gerät …', isSet: '{0} ist gesetzt.', refused: 'Das Gerät lehnt ab: {0}',
    noAnswer: 'Das Gerät hat nicht rechtzeitig geantwortet; es kann den Wert noch setzen.',
    isOffline: 'Das Gerät ist nicht da.', unreadable: 'Das ist kein Wert dieses Parameters. {0}',
    noParameter: 'Das Gerät hat diesen Parameter nicht mehr.', failed: 'Das ging nicht: {0}',
    always: 'immer {0}', range: '{0} bis {1}', least: '{0} oder mehr', most: '{0} oder weniger',
    bytes: 'bis zu {0} Bytes', elements: '{0} bis {1} Elemente', elementsMost: 'bis zu {0} Elemente',
    elementsLeast: '{0} Elemente oder mehr', each: 'je {0}', oneOf: 'eins von {0}', members: '{0} Glieder',
    initial: 'Vorgabe {0}', number: '{0} Parameter', readOnly: 'nur lesbar',
  },
};

const LIST_PAUSE = 1000; // milliseconds between two looks at the list of devices, at least
const RETRY_PAUSE = 2000;
const OPEN_UP_TO = 300; // parameters of a device whose sections are all open at first

const texts = TEXTS[document.documentElement.lang] || TEXTS.en;
const token = document.querySelector('meta[name=token]').content;
const $ = (id) => document.getElementById(id);

function say(key, ...args) {
  return texts[key].replace(/\{(\d)\}/g, (_, place) => args[place]);
}

// Told outright, since a table that is laid out for a narrow screen is none to browsers.
const ROLES = {
  table: 'table', thead: 'rowgroup', tbody: 'rowgroup', tr: 'row', td: 'cell', col: 'columnheader', row: 'rowheader',
};

function element(name, options = {}, ...children) {
  const { text, label, ...rest } = options;
  const made = Object.assign(document.createElement(name), rest);
  const role = ROLES[made.scope || name];
  if (role) made.setAttribute('role', role);
  if (text !== undefined) made.textContent = text;
  if (label !== undefined) made.setAttribute('aria-label', label);
  made.append(...children);
  return made;
}

function announce(text) {
  $('announcement').textContent = text;
}

// --- The bounds of a schema in words. Its numbers are texts.

function span(low, high, both, least, most) {
  if (low !== undefined && high !== undefined) return say(both, low, high);
  if (high !== undefined) return say(most, high);
  return low === undefined ? '' : say(least, low);
}

function boundsOf(schema, depth = 0) {
  const words = [];
  const isShort = (value) => ['string', 'boolean'].includes(typeof value);
  if (isShort(schema.const)) words.push(say('always', schema.const));
  if (Array.isArray(schema.enum) && schema.enum.every(isShort) && !(schema['x-legacyif'] || {}).elements)
    words.push(say('oneOf', schema.enum.join(', ')));
  words.push(span(schema.minimum, schema.maximum, 'range', 'least', 'most'));
  if (schema.maxLength !== undefined) words.push(say('bytes', schema.maxLength));
  if (schema.prefixItems) {
    words.push(say('members', schema.prefixItems.length));
  } else {
    const low = schema.minItems === '0' ? undefined : schema.minItems;
    words.push(span(low, schema.maxItems, 'elements', 'elementsLeast', 'elementsMost'));
  }
  if (depth < 2) {
    const each = schema.items && typeof schema.items === 'object' ? boundsOf(schema.items, depth + 1) : '';
    if (each) words.push(say('each', each));
    for (const [name, part] of Object.entries(schema.properties || {})) {
      const own = boundsOf(part, depth + 1);
      if (own) words.push(`${name}: ${own}`);
    }
  }
  return words.filter((word) => word).join('; ');
}

function wordsOf(parameter) {
  const { schema, choices } = parameter;
  const words = [boundsOf(schema)];
  if (choices) words.push(say('oneOf', choices.map((choice) => choice.text).join(', ')));
  if (['string', 'boolean'].includes(typeof schema.default) && schema.default !== '') {
    const named = (choices || []).find((choice) => choice.number === schema.default);
    words.push(say('initial', named ? named.text : schema.default));
  }
  if (!parameter.writable) words.push(say('readOnly'));
  return words.filter((word) => word).join('; ');
}

// --- One parameter: a row of a table, and a row with a form while somebody changes it.

class Row {
  constructor(parameter) {
    this.parameter = parameter;
    const { name, description } = parameter;
    this.value = element('td');
    this.head = element('th', { scope: 'row' }, element('bdi', { text: name }));
    if (description) this.head.append(element('p', { className: 'description', text: description }));
    this.button = element('button', {
      type: 'button', text: say('change'), label: say('changeOf', name), onclick: () => this.open(),
    });
    this.line = element('tr', {}, this.head, this.value, element('td', { text: wordsOf(parameter) }),
      element('td', {}, ...(parameter.writable ? [this.button] : [])));
    this.line.dataset.path = `${parameter.section}/${name}`;
    this.answer = null;
    this.form = null;
    this.show(false);
  }

  show(isFresh) {
    const { text, unit, finding } = this.parameter;
    if (text === undefined) {
      this.value.replaceChildren(element('span', { className: 'unknown', text: say('unknown') }));
    } else {
      const value = element('bdi', { className: 'value', text });
      this.value.replaceChildren(value);
      if (unit) this.value.append(' ', element('bdi', { className: 'unit', text: unit }));
      if (isFresh) value.classList.add('fresh');
    }
    if (finding) this.value.append(element('p', { className: 'finding', text: finding }));
    if (this.answer) this.value.append(this.answer);
  }

  field() {
    const { schema, choices, edit } = this.parameter;
    const options = choices
      || (schema.type === 'boolean' ? ['true', 'false'] : Array.isArray(schema.enum) ? schema.enum : null)
        ?.map((value) => ({ text: String(value), edit: String(value) }));
    if (!options) return element('input', { type: 'text', value: edit || '', autocomplete: 'off', spellcheck: false });
    const known = options.some((option) => option.edit === edit || option.number === edit);
    return element('select', {},
      ...(known ? [] : [element('option', { text: '', value: edit || '' })]),
      ...options.map((option) => element('option', {
        text: option.text, value: option.edit, selected: option.edit === edit || option.number === edit,
      })));
  }

  open() {
    if (this.form) return this.input.focus();
    this.answer = null;
    this.show(false);
    const id = `value-${this.parameter.id}`;
    this.input = this.field();
    this.input.id = id;
    this.input.setAttribute('aria-describedby', `${id}-answer`);
    this.outcome = element('p', { id: `${id}-answer`, className: 'answer' });
    const form = element('form', {},
      element('label', { htmlFor: id, text: say('newValue', this.parameter.name) }), this.input,
      element('button', { type: 'submit', className: 'main', text: say('set') }),
      element('button', { type: 'button', text: say('cancel'), onclick: () => this.close() }), this.outcome);
    form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.set();
    });
    form.addEventListener('keydown', (event) => {
      if (event.key === 'Escape') this.close();
    });
    this.form = element('tr', { className: 'edit' }, element('td', { colSpan: 4 }, form));
    this.line.after(this.form);
    this.button.setAttribute('aria-expanded', 'true');
    this.input.focus();
    if (this.input.select) this.input.select();
  }

  close() {
    if (!this.form) return;
    this.form.remove();
    this.form = null;
    this.button.removeAttribute('aria-expanded');
    this.button.focus();
  }

  tell(isGood, text) {
    this.outcome.className = isGood === undefined ? 'answer' : `answer ${isGood ? 'good' : 'bad'}`;
    this.outcome.textContent = text;
    this.input.toggleAttribute('aria-invalid', false);
    if (isGood === false) this.input.setAttribute('aria-invalid', 'true');
    announce(text);
  }

  async set() {
    if (this.isWaiting) return;
    this.isWaiting = true;
    const form = this.form;
    this.tell(undefined, say('waiting'));
    const { id, section, name } = this.parameter;
    let isSet = false;
    let text;
    try {
      const response = await fetch('api/set', {
        method: 'POST',
        headers: { 'Content-Type': 'application/json', 'X-Legacyif-Token': token },
        body: JSON.stringify({ device: open.name, id, section, name, value: this.input.value }),
      });
      const isJson = (response.headers.get('Content-Type') || '').startsWith('application/json');
      const answer = isJson ? await response.json() : { outcome: 'failed', message: await response.text() };
      isSet = answer.outcome === 'set';
      text = {
        set: () => say('isSet', name),
        refused: () => say('refused', answer.message),
        'no-answer': () => say('noAnswer'),
        offline: () => say('isOffline'),
        unreadable: () => say('unreadable', answer.message),
        'no-parameter': () => say('noParameter'),
        failed: () => say('failed', answer.message),
      }[answer.outcome]();
    } catch (error) {
      text = say('failed', error.message);
    }
    this.isWaiting = false;
    if (this.form !== form) return announce(text);
    this.tell(isSet, text);
    if (!isSet) return;
    this.answer = this.outcome;
    this.close();
    this.show(false);
  }
}

// --- The device that is open: its sections as a tree, and a row for each parameter once its section has been opened.

class Section {
  constructor(name) {
    this.parameters = [];
    this.body = element('tbody');
    this.label = element('bdi', { text: name });
    this.number = element('span', { className: 'number' });
    this.node = element('details', {}, element('summary', {}, element('h3', {}, this.label), this.number));
    this.node.addEventListener('toggle', () => this.node.open && this.fill());
    this.isFilled = false;
  }

  fill() {
    if (this.isFilled || !this.parameters.length) return;
    this.isFilled = true;
    for (const parameter of this.parameters) {
      const row = new Row(parameter);
      open.rows.set(parameter.id, row);
      this.body.append(row.line);
    }
    const heads = ['parameter', 'value', 'bounds', 'action'];
    this.node.querySelector('summary').after(element('table', {},
      element('caption', { className: 'unseen', text: this.label.textContent }),
      element('thead', { className: 'unseen' },
        element('tr', {}, ...heads.map((head) => element('th', { scope: 'col', text: say(head) })))),
      this.body));
  }
}

const open = { name: '', online: false, signature: '', parameters: new Map(), rows: new Map(), sections: [] };

function showState(device) {
  const state = device.online ? 'online' : 'offline';
  const suffix = device.complete ? '' : `, ${say('incomplete')}`;
  $('title').textContent = device.title;
  $('device-state').className = `state ${state}`;
  $('device-state').textContent = say(state) + suffix;
}

function showDevice(device) {
  $('hint').hidden = true;
  $('device').hidden = false;
  $('name').textContent = open.name;
  document.title = `${open.name} – ${say('fleet')}`;
  if (device) showState(device);
  const parameters = device && device.parameters;
  const signature = JSON.stringify(parameters
    && parameters.map(({ text, edit, finding, ...lasting }) => lasting));
  if (parameters && open.signature === signature) return showValues(parameters);
  open.signature = signature;
  open.rows.clear();
  open.parameters.clear();
  open.sections = [];
  $('parameter-search').hidden = !parameters;
  if (!parameters) {
    $('tree').replaceChildren(element('p', { className: 'note', text: say(device ? 'noSchemas' : 'noDevice') }));
    return;
  }
  $('tree').replaceChildren(element('p', { id: 'nothing', className: 'note', text: say('nothing'), hidden: true }));
  const known = new Map();
  const sectionOf = (path) => {
    if (known.has(path)) return known.get(path);
    const cut = path.lastIndexOf('/');
    const section = new Section(path.slice(cut + 1));
    known.set(path, section);
    open.sections.push(section);
    (cut < 0 ? $('tree') : sectionOf(path.slice(0, cut)).node).append(section.node);
    return section;
  };
  for (const parameter of parameters) {
    open.parameters.set(parameter.id, parameter);
    sectionOf(parameter.section).parameters.push(parameter);
  }
  for (const section of open.sections) {
    section.number.textContent = section.parameters.length ? say('number', section.parameters.length) : '';
    if (parameters.length > OPEN_UP_TO) continue;
    section.fill();
    section.node.open = true;
  }
  filterParameters();
}

function showValues(values) {
  for (const { id, text, edit, finding } of values) {
    const parameter = open.parameters.get(id);
    if (!parameter) continue;
    const isFresh = parameter.text !== text;
    Object.assign(parameter, { text, edit, finding });
    const row = open.rows.get(id);
    if (row) row.show(isFresh);
  }
}

function filterParameters() {
  const sought = $('parameter-filter').value.trim().toLowerCase();
  const matches = (parameter) => `${parameter.section}/${parameter.name}`.toLowerCase().includes(sought);
  let some = false;
  // What is inside another section stands behind it.
  for (const section of [...open.sections].reverse()) {
    const own = section.parameters.filter(matches);
    if (sought && own.length) {
      section.fill();
      section.node.open = true;
    }
    for (const parameter of section.isFilled ? section.parameters : []) {
      const row = open.rows.get(parameter.id);
      row.line.hidden = !matches(parameter);
      if (row.form) row.form.hidden = row.line.hidden;
    }
    const inner = [...section.node.children].filter((child) => child.tagName === 'DETAILS' && !child.hidden);
    section.node.hidden = !own.length && !inner.length;
    if (sought && inner.length) section.node.open = true;
    some = some || own.length > 0;
  }
  if ($('nothing')) $('nothing').hidden = some;
}

// --- The list of devices, a page of it at a time.

const list = { after: [''], isDue: false, isLooking: false, last: 0, next: null, timer: 0, nodes: new Map() };

function deviceNode(device) {
  const link = element('a', { href: `#device=${encodeURIComponent(device.name)}` },
    element('bdi', { className: 'name', text: device.name }), element('span'),
    element('bdi', { className: 'title' }));
  return { item: element('li', {}, link), link };
}

function markOpen() {
  for (const [name, { link }] of list.nodes) {
    if (name === open.name) link.setAttribute('aria-current', 'page');
    else link.removeAttribute('aria-current');
  }
}

function showList(answer) {
  $('count').textContent = say('count', answer.matches, answer.total, answer.online);
  const names = answer.devices.map((device) => device.name);
  if (names.join() !== [...list.nodes.keys()].join()) {
    const focused = document.activeElement;
    list.nodes = new Map(answer.devices.map((device) => [device.name, list.nodes.get(device.name) || deviceNode(device)]));
    $('devices').replaceChildren(...[...list.nodes.values()].map((node) => node.item));
    if (focused !== document.activeElement && focused.isConnected) focused.focus();
  }
  for (const device of answer.devices) {
    const [, state, title] = list.nodes.get(device.name).link.children;
    const word = device.online ? 'online' : 'offline';
    state.className = `state ${word}`;
    state.textContent = say(word);
    title.textContent = device.title;
  }
  markOpen();
  $('pages').hidden = list.after.length < 2 && !answer.more;
  $('back').setAttribute('aria-disabled', String(list.after.length < 2));
  $('forward').setAttribute('aria-disabled', String(!answer.more));
  list.next = answer.more ? names[names.length - 1] : null;
}

async function look() {
  list.isDue = false;
  list.isLooking = true;
  list.last = Date.now();
  try {
    const query = new URLSearchParams({
      filter: $('filter').value.trim(), state: $('state').value, after: list.after[list.after.length - 1],
    });
    const response = await fetch(`api/devices?${query}`);
    if (response.ok) showList(await response.json());
  } catch {
    // The events tell when the program is back.
  }
  list.isLooking = false;
  if (list.isDue) lookSoon();
}

// However much happens, the list is asked for now and then.
function lookSoon() {
  list.isDue = true;
  if (list.isLooking) return;
  clearTimeout(list.timer);
  list.timer = setTimeout(look, Math.max(0, list.last + LIST_PAUSE - Date.now()));
}

// What somebody wants to see does not wait.
function lookNow() {
  list.last = 0;
  lookSoon();
}

function lookFor() {
  list.after = [''];
  lookNow();
}

// --- What the program tells by itself.

let events = null;
let run = '';

function showLink(isLost, text) {
  $('link').className = isLost ? 'lost' : '';
  if ($('link').textContent !== text) $('link').textContent = text;
}

function listen() {
  if (events) events.close();
  events = null;
  if (document.hidden) return; // a page that nobody sees needs no connection
  const source = new EventSource(`api/events?device=${encodeURIComponent(open.name)}`);
  const on = (name, use) => source.addEventListener(name, (event) => use(JSON.parse(event.data)));
  on('fleet', (fleet) => {
    // The program was started again: it may have another page, and has another token.
    if (run && fleet.run !== run) return location.reload();
    run = fleet.run;
    const reason = fleet.reason ? `: ${fleet.reason}` : '';
    showLink(!fleet.connected, fleet.connected ? say('connected') : say('lost') + reason);
    lookSoon();
  });
  on('device', showDevice);
  on('state', showState);
  on('values', showValues);
  source.onerror = () => {
    showLink(true, say('gone'));
    if (source.readyState === EventSource.CLOSED && events === source) setTimeout(listen, RETRY_PAUSE);
  };
  events = source;
}

function choose() {
  const match = /^#device=(.+)$/.exec(location.hash);
  if (!match && location.hash) return; // a place on the page
  let name = '';
  try {
    name = match ? decodeURIComponent(match[1]) : '';
  } catch {
    // Not a name.
  }
  const isOther = name !== open.name;
  open.name = name;
  open.signature = '';
  $('hint').hidden = Boolean(name);
  $('device').hidden = !name;
  if (!name) document.title = say('fleet');
  if (isOther) {
    $('parameter-filter').value = '';
    $('tree').replaceChildren();
    $('title').textContent = '';
    $('device-state').textContent = '';
    $('name').textContent = name;
  }
  markOpen();
  listen();
}

for (const node of document.querySelectorAll('[data-text]')) node.textContent = say(node.dataset.text);
for (const form of document.querySelectorAll('form')) form.addEventListener('submit', (event) => event.preventDefault());
$('filter').addEventListener('input', lookFor);
$('state').addEventListener('change', lookFor);
$('parameter-filter').addEventListener('input', filterParameters);
$('back').addEventListener('click', () => {
  if (list.after.length < 2) return;
  list.after.pop();
  lookNow();
});
$('forward').addEventListener('click', () => {
  if (!list.next) return;
  list.after.push(list.next);
  lookNow();
});
addEventListener('hashchange', choose);
document.addEventListener('visibilitychange', listen);
choose();
