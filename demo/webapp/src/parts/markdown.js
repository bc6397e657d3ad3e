import { frontVersion } from '../frontVersion.js';
import { documentFromMarkdown, markdownFromDocument } from '../text/markdown.js';
import { documentFromContent } from '../text/schema.js';
import { providePart } from '../ui/parts.js';

/** Documents pass as their JSON content: the part has a schema of its own. */
providePart('markdown', {
  frontVersion,
  contentFromMarkdown: (text) => documentFromMarkdown(text).toJSON(),
  markdownFromContent: (content) => markdownFromDocument(documentFromContent(content)),
});
