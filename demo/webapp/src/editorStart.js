window.performance.mark('docs-editor-start');
