import crelt from 'crelt';

/**
 * Asks for one line of text beside the document.
 * @param {object} question
 * @param {string} question.label
 * @param {string} [question.value] what stands in the line at first
 * @param {string} question.submit the button's text
 * @param {(text: string) => string | null} [question.problem] why a text will not do; null when it does
 * @param {(text: string) => void} question.accept
 * @param {() => void} [question.done] called when the dialog has gone, either way
 */
export function askForText({ label, value = '', submit, problem = () => null, accept, done = () => {} }) {
  const input = crelt('input', { type: 'text', 'aria-label': label });
  const wrong = crelt('p', { class: 'wrong' });
  input.value = value;
  const close = () => {
    dialog.remove();
    done();
  };
  const onSubmit = (event) => {
    event.preventDefault();
    const reason = problem(input.value);
    wrong.textContent = reason || '';
    if (reason) return;
    accept(input.value);
    close();
  };
  const buttons = crelt('div', { class: 'actions' },
    crelt('button', { type: 'submit', class: 'primary' }, submit),
    crelt('button', { type: 'button', onclick: close }, 'Cancel'));
  const form = crelt('form', { onsubmit: onSubmit }, crelt('label', label), input, wrong, buttons);
  const dialog = crelt('div', { class: 'dialog', role: 'dialog', 'aria-label': label }, form);
  dialog.addEventListener('keydown', (event) => event.key === 'Escape' && close());
  document.body.append(dialog);
  input.select();
  input.focus();
}
