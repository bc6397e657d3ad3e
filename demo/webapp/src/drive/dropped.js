/**
 * What is dragged onto the page. The desktop side tells the paths when the drag enters ("ondragenter"); the browser
 * tells the files at the drop, without their paths.
 */

/** The paths in the data of "ondragenter". @returns {string[]} */
export function pathsOfEvent(data) {
  const files = data && Array.isArray(data.files) ? data.files : [];
  return files.filter((path) => typeof path === 'string' && path !== '');
}

/** The arguments of `uploadFileDrag`; null when there is nothing to upload. */
export function dragArguments(paths, { group, folder }) {
  return paths.length > 0 ? { groupid: group, parentid: folder, fileid: '0', files: paths } : null;
}

function readAll(reader) {
  return new Promise((resolve, reject) => {
    const found = [];
    const more = () => reader.readEntries((entries) => {
      if (entries.length === 0) resolve(found);
      else found.push(...entries), more();
    }, reject);
    more();
  });
}

async function filesBelow(entry, folders) {
  if (entry.isFile) {
    const file = await new Promise((resolve, reject) => entry.file(resolve, reject));
    return [{ file, folders }];
  }
  const entries = await readAll(entry.createReader());
  const inside = [...folders, entry.name];
  const lists = await Promise.all(entries.map((each) => filesBelow(each, inside)));
  return [{ file: null, folders: inside }, ...lists.flat()];
}

/**
 * The files of a drop, folders with everything in them. Has to be called in the drop event itself.
 * @returns {Promise<{file: File | null, folders: string[]}[]>} null: a folder, which may be empty
 */
export function filesOfDrop(transfer) {
  const entries = [...transfer.items].map((item) => item.webkitGetAsEntry && item.webkitGetAsEntry()).filter(Boolean);
  return Promise.all(entries.map((entry) => filesBelow(entry, []))).then((lists) => lists.flat());
}

/** The files of an input element; those of a folder input carry their folders. */
export function filesOfInput(files) {
  return [...files].map((file) => ({ file, folders: (file.webkitRelativePath || file.name).split('/').slice(0, -1) }));
}
