// The script object `window.helio`. Runs at the creation of every main-frame document, inside a function that has the
// class `QWebChannel` and the parameter `setup` {secret, origins} in scope; neither ever reaches the page.
const transport = window.qt && window.qt.webChannelTransport;
if (!transport) {
  return;
}

// The browser looks up `qt.webChannelTransport.onmessage` for every message: leave that and nothing to send with.
const wire = { send: (data) => transport.send(data), onmessage: null };
const inlet = Object.freeze({ onmessage: (message) => wire.onmessage && wire.onmessage(message) });
Object.defineProperty(window, 'qt', {
  value: Object.freeze({ webChannelTransport: inlet }),
  writable: false,
  configurable: false,
  enumerable: false,
});

const origin = `${location.protocol}//${location.host}`;
if (self.origin !== origin || !setup.origins.includes(origin)) {
  return;
}

function randomText(words) {
  return Array.from(crypto.getRandomValues(new Uint32Array(words)), (word) => word.toString(36)).join('');
}

const token = randomText(5);
const callPrefix = `${randomText(2)}-`;

const Request = window.XMLHttpRequest;
const { open: openRequest, send: sendRequest } = Request.prototype;
const { parse, stringify } = JSON;
const { error: complain } = console;
const openCalls = new Map();
const listeners = new Map();
let port = null;
let waiting = [];
let callCount = 0;
let lastInOrder = null;

/** Hands `message` the port, now or as soon as the channel is ready; the order of messages is kept. */
function send(message) {
  if (port) {
    message(port);
  } else {
    waiting.push(message);
  }
}

/** The text at `url`. With XMLHttpRequest: it hands over a large text in a fraction of the time of a body stream. */
function fetchLarge(url) {
  return new Promise((resolve, reject) => {
    const request = new Request();
    openRequest.call(request, 'GET', url);
    request.onload = () => (request.status === 200 ? resolve(request.responseText) : reject(new Error(`status ${request.status}`)));
    request.onerror = () => reject(new Error('no answer'));
    request.onabort = request.onerror;
    sendRequest.call(request);
  });
}

function settle(id, isReply, text) {
  const call = openCalls.get(id);
  if (!call) {
    return;
  }
  openCalls.delete(id);
  if (!isReply) {
    call.reject(new Error(text));
    return;
  }
  try {
    call.resolve(parse(text));
  } catch (failure) {
    call.reject(new Error(`unreadable reply: ${failure.message}`));
  }
}

function settleFrom(id, url) {
  const call = openCalls.get(id);
  if (!call) {
    return;
  }
  openCalls.delete(id);
  fetchLarge(url)
    .then(parse)
    .then(call.resolve, (failure) => call.reject(new Error(`reply lost: ${failure.message}`)));
}

function run(target, text) {
  try {
    target(text);
  } catch (failure) {
    complain(failure);
  }
}

function raise(isEvent, name, text) {
  if (isEvent) {
    [...(listeners.get(name) || [])].forEach((listener) => run(listener, text));
  } else if (typeof window[name] === 'function') {
    run(window[name], text);
  }
}

/** Events and named functions keep their order, also when a large text has to be fetched first. */
function raiseInOrder(isEvent, name, text, isUrl) {
  if (!isUrl && !lastInOrder) {
    raise(isEvent, name, text);
    return;
  }
  const arrival = isUrl ? fetchLarge(text) : text;
  const done = Promise.all([arrival, lastInOrder])
    .then(([body]) => raise(isEvent, name, body))
    .catch((failure) => complain(`"${name}" lost: ${failure.message}`))
    .then(() => {
      if (lastInOrder === done) {
        lastInOrder = null;
      }
    });
  lastInOrder = done;
}

/** One delivery of the host: the letters are those of ScriptPort; an upper-case letter brings a URL for the text. */
function deliver(kind, target, text) {
  switch (kind) {
    case 'r':
    case 'x':
      settle(target, kind === 'r', text);
      break;
    case 'R':
      settleFrom(target, text);
      break;
    case 'e':
    case 'f':
      raiseInOrder(kind === 'e', target, text, false);
      break;
    case 'E':
    case 'F':
      raiseInOrder(kind === 'E', target, text, true);
      break;
    default:
      complain(`unknown delivery "${kind}"`);
  }
}

/** What came back with a call: the addressee's token, then deliveries. */
function deliverAll(items, callId) {
  if (items[0] !== token) {
    return;
  }
  for (let i = 1; i + 2 < items.length; i += 3) {
    deliver(items[i], items[i + 1] || callId, items[i + 2]);
  }
}

function call(name, args = {}) {
  return new Promise((resolve, reject) => {
    callCount += 1;
    const id = callPrefix + callCount;
    const text = stringify({ id, name: String(name), args });
    openCalls.set(id, { resolve, reject });
    send((target) => target.fromJSAsynCall(token, text, (items) => deliverAll(items, id)));
  });
}

function on(eventName, listener) {
  if (typeof listener !== 'function') {
    throw new TypeError('helio.on wants a function');
  }
  const name = String(eventName);
  if (!listeners.has(name)) {
    listeners.set(name, new Set());
  }
  listeners.get(name).add(listener);
}

function emitHost(name, data = {}) {
  const text = stringify(data);
  send((target) => target.emitHost(token, String(name), text));
}

Object.defineProperty(window, 'helio', {
  value: Object.freeze({ call, on, emitHost }),
  writable: false,
  configurable: false,
  enumerable: true,
});

/** A delivery may have been on its way to the document before this one. */
function deliverTo(addressee, kind, target, text) {
  if (addressee === token) {
    deliver(kind, target, text);
  }
}

new QWebChannel(wire, (channel) => {
  port = channel.objects.port;
  port.message.connect(deliverTo);
  port.hello(setup.secret, origin, token, callPrefix);
  waiting.forEach((message) => message(port));
  waiting = [];
});
