// What the main frame shows after a load: when its document began, and the error text if it is the error page.
(() => {
  const isErrorPage = location.protocol === 'chrome-error:';
  const code = isErrorPage && document.querySelector('[jscontent="errorCode"]');
  return {
    began: performance.timeOrigin,
    isErrorPage,
    error: code ? code.textContent.trim() : '',
  };
})()
