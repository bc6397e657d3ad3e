window.performance.mark('docs-document-start');
