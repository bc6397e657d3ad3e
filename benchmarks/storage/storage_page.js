// Runs in a page of the documents site, with `setup` {localId, scriptUrl, largeBytes, rounds, files} in scope.
let asked = 0;
const file = (method, args) => helio.call(`docs.storage.file.${method}`, { localId: setup.localId, ...args });

/** Calls a method that answers to a named function; promises the text. */
function answerOf(method, args) {
  asked += 1;
  const name = `__bench_${asked}__`;
  return new Promise((resolve, reject) => {
    window[name] = (text) => {
      delete window[name];
      resolve(text);
    };
    file(method, { ...args, callback: name, dataCallbackName: name }).then(
      (reply) => reply.callstatus === 'ok' || reject(new Error(`${method}: ${reply.err}`)),
      reject,
    );
  });
}

async function answered(method, args) {
  const answer = JSON.parse(await answerOf(method, args));
  if (answer.callstatus !== 'ok') {
    throw new Error(`${method} failed: ${JSON.stringify(answer)}`);
  }
  return answer;
}

async function timed(action) {
  const start = performance.now();
  await action();
  return performance.now() - start;
}

const large = {
  fetch: async () => {
    const reply = await fetch(setup.scriptUrl, { cache: 'no-store' });
    const { byteLength } = await reply.arrayBuffer();
    if (!reply.ok || byteLength !== setup.largeBytes) {
      throw new Error(`${setup.scriptUrl}: ${reply.status}, ${byteLength} bytes`);
    }
  },
  read: async () => {
    const text = await answerOf('read', { relativePos: 'large' });
    if (text.length < (setup.largeBytes / 3) * 4) {
      throw new Error(text.slice(0, 200));
    }
  },
  readDataSteam: async () => {
    const text = await answerOf('readDataSteam', { relativePos: 'large' });
    if (text.length < setup.largeBytes) {
      throw new Error(text.slice(0, 200));
    }
  },
};

/** Turn by turn; the first turn only warms up. */
async function measureLarge() {
  const times = { fetch: [], read: [], readDataSteam: [] };
  for (let round = 0; round <= setup.rounds; round += 1) {
    for (const [name, action] of Object.entries(large)) {
      const time = await timed(action);
      if (round > 0) {
        times[name].push(time);
      }
    }
  }
  return times;
}

const position = (index) => ({ relativePos: `small/${index % 10}/${index}` });
const small = {
  create: async (index) => {
    const reply = await file('create', { ...position(index), data: btoa(`one ${index}`) });
    if (reply.callstatus !== 'ok') {
      throw new Error(`create: ${reply.err}`);
    }
  },
  read: async (index) => {
    const { result } = await answered('read', position(index));
    if (atob(result.body) !== `one ${index}`) {
      throw new Error(`read ${result.body}`);
    }
  },
  update: (index) => answered('update', { ...position(index), data: btoa(`two ${index}`) }),
  remove: (index) => answered('remove', position(index)),
};

/** Milliseconds for all files by operation, with so many calls on their way at a time. */
async function measureSmall(atATime) {
  const times = {};
  for (const [name, action] of Object.entries(small)) {
    times[name] = await timed(async () => {
      let next = 0;
      const work = async () => {
        while (next < setup.files) {
          next += 1;
          await action(next - 1);
        }
      };
      await Promise.all(Array.from({ length: atATime }, work));
    });
  }
  return times;
}

return { large: await measureLarge(), together: await measureSmall(32), oneByOne: await measureSmall(1) };
