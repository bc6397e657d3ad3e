import crelt from 'crelt';

/** Asks before something is done that cannot be undone. @returns {Promise<boolean>} */
export function askToConfirm({ text, submit }) {
  return new Promise((resolve) => {
    const before = document.activeElement;
    const end = (answer) => {
      dialog.remove();
      if (before) before.focus();
      resolve(answer);
    };
    const go = crelt('button', { type: 'button', class: 'primary', onclick: () => end(true) }, submit);
    const cancel = crelt('button', { type: 'button', onclick: () => end(false) }, 'Cancel');
    const dialog = crelt('div', { class: 'dialog', role: 'alertdialog', 'aria-label': text },
      crelt('p', text), crelt('div', { class: 'actions' }, go, cancel));
    dialog.addEventListener('keydown', (event) => {
      if (event.key === 'Escape') end(false);
      if (event.key !== 'Tab') return;
      event.preventDefault();
      (document.activeElement === go ? cancel : go).focus();
    });
    document.body.append(dialog);
    go.focus();
  });
}
