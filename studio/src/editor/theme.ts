// How the editor looks: the page's sizes and colours, by their names. The editor lives in a tree of its own below its
// element, where its rules are a constructed sheet; a <style> element is what the page's policy forbids.
import { EditorView } from '@codemirror/view';

const severities = ['error', 'warning', 'info'] as const;
const colourOf = { error: '--error', warning: '--warning', info: '--advice' } as const;

export const theme = EditorView.theme({
  '&': {
    height: '100%',
    color: 'var(--text)',
    backgroundColor: 'var(--surface)',
    fontSize: '13px',
  },
  '&.cm-focused': { outline: 'none' },
  '.cm-scroller': { fontFamily: 'var(--code-font)', lineHeight: '1.6' },
  '.cm-content': { padding: '8px 0', caretColor: 'var(--text)' },
  '.cm-line': { padding: '0 12px 0 4px' },
  '.cm-gutters': {
    backgroundColor: 'var(--surface)',
    color: 'var(--dim)',
    border: 'none',
    paddingLeft: '4px',
  },
  '.cm-lineNumbers .cm-gutterElement': { padding: '0 4px 0 8px', minWidth: '32px' },
  '.cm-activeLine': { backgroundColor: 'transparent' },
  '&.cm-focused .cm-activeLine': {
    backgroundColor: 'color-mix(in srgb, var(--raised) 55%, transparent)',
  },
  '.cm-activeLineGutter': { backgroundColor: 'transparent', color: 'var(--text)' },
  '.cm-foldGutter .cm-gutterElement': { cursor: 'pointer', width: '14px', textAlign: 'center' },
  '.cm-foldPlaceholder': {
    backgroundColor: 'var(--raised)',
    border: '1px solid var(--line)',
    color: 'var(--dim)',
    borderRadius: '4px',
    padding: '0 6px',
  },
  '.cm-cursor, .cm-dropCursor': { borderLeft: '2px solid var(--accent)' },
  '&.cm-focused > .cm-scroller > .cm-selectionLayer .cm-selectionBackground, .cm-selectionBackground':
    { background: 'var(--accent-soft)' },
  '&.cm-focused .cm-matchingBracket': {
    backgroundColor: 'transparent',
    boxShadow: 'inset 0 0 0 1px var(--mark)',
    borderRadius: '2px',
  },
  '&.cm-focused .cm-nonmatchingBracket': { backgroundColor: 'transparent' },
  '.cm-selectionMatch': { backgroundColor: 'color-mix(in srgb, var(--mark) 22%, transparent)' },
  '.cm-searchMatch': {
    backgroundColor: 'color-mix(in srgb, var(--warning) 28%, transparent)',
    outline: 'none',
  },
  '.cm-searchMatch-selected': {
    backgroundColor: 'color-mix(in srgb, var(--warning) 55%, transparent)',
  },

  // On a narrow page long lines go on below, and beside a list there is no room.
  '@media (max-width: 999px)': {
    '.cm-tooltip.cm-completionInfo': { display: 'none' },
    '.cm-content': {
      flexShrink: '1',
      minWidth: '0',
      whiteSpace: 'break-spaces',
      overflowWrap: 'anywhere',
    },
  },

  '.t-name': { color: 'var(--c-name)' },
  '.t-head': { color: 'var(--c-name)', fontWeight: '600' },
  '.t-number': { color: 'var(--c-number)' },
  '.t-function': { color: 'var(--c-function)' },
  '.t-letter': { color: 'var(--c-letter)' },
  '.t-macro': { color: 'var(--c-macro)' },
  '.t-comment': { color: 'var(--c-comment)' },
  '.t-text': { color: 'var(--c-text)' },
  '.t-quiet': { color: 'var(--dim)' },
  // Text that is not read, by the tokens while one types and by the run when it has been told.
  '.t-dropped, .switched-off, .switched-off span': {
    color: 'color-mix(in srgb, var(--dim) 80%, var(--surface))',
    fontStyle: 'italic',
    fontWeight: '400',
  },

  ...Object.fromEntries(
    severities.flatMap((severity) => {
      const colour = `var(${colourOf[severity]})`;
      return [
        [
          `.cm-lintRange-${severity}`,
          {
            backgroundImage: 'none',
            paddingBottom: '0',
            textDecoration: `underline ${severity === 'info' ? 'dotted 1px' : 'wavy 1.5px'} ${colour}`,
            textDecorationSkipInk: 'none',
            textUnderlineOffset: '3px',
          },
        ],
        [`.cm-lintPoint-${severity}::after`, { borderBottomColor: colour }],
        [`.cm-diagnostic-${severity}`, { borderLeft: `3px solid ${colour}` }],
      ];
    }),
  ),
  '.cm-lintRange-active': { backgroundColor: 'transparent' },
  '.cm-diagnostic': { padding: '6px 12px 6px 10px', margin: '0' },

  '.cm-tooltip': {
    backgroundColor: 'var(--surface)',
    color: 'var(--text)',
    border: '1px solid var(--line)',
    borderRadius: '6px',
    boxShadow: '0 4px 16px rgb(0 0 0 / 14%)',
    fontFamily: 'var(--text-font)',
    fontSize: '13px',
    overflow: 'hidden',
    maxWidth: 'min(440px, 92vw)',
  },
  '.cm-tooltip-hover .help': { padding: '8px 12px' },
  '.cm-tooltip-section:not(:first-child)': { borderTop: '1px solid var(--line)' },
  '.help code': { fontFamily: 'var(--code-font)', fontSize: '12px', color: 'var(--c-name)' },
  '.help p': { margin: '0' },
  '.help p + p': { marginTop: '4px' },
  '.help .form': { fontFamily: 'var(--code-font)', fontSize: '12px' },
  '.help .dim': { color: 'var(--dim)' },

  '.cm-tooltip.cm-tooltip-autocomplete': { overflow: 'visible' },
  '.cm-tooltip.cm-tooltip-autocomplete > ul': {
    fontFamily: 'var(--code-font)',
    maxHeight: '264px',
    minWidth: '280px',
    maxWidth: 'min(600px, 92vw)',
  },
  '.cm-tooltip.cm-tooltip-autocomplete > ul > li': {
    display: 'flex',
    gap: '12px',
    alignItems: 'baseline',
    padding: '3px 10px',
  },
  '.cm-tooltip-autocomplete ul li[aria-selected]': {
    backgroundColor: 'var(--accent-soft)',
    color: 'var(--text)',
  },
  '.cm-completionLabel': { minWidth: '5ch' },
  '.cm-completionMatchedText': { textDecoration: 'none', fontWeight: '700' },
  '.cm-completionDetail': {
    flex: '1',
    marginLeft: '0',
    fontFamily: 'var(--text-font)',
    fontStyle: 'normal',
    fontSize: '12px',
    color: 'var(--dim)',
    overflow: 'hidden',
    textOverflow: 'ellipsis',
  },

  '.cm-panels': { backgroundColor: 'var(--ground)', color: 'var(--text)' },
  '.cm-panels.cm-panels-top': { borderBottom: '1px solid var(--line)' },
  '.cm-panels.cm-panels-bottom': { borderTop: '1px solid var(--line)' },
  '.cm-panel.cm-search': { padding: '8px 32px 8px 12px', fontFamily: 'var(--text-font)' },
  '.cm-panel.cm-search label': {
    display: 'inline-flex',
    alignItems: 'center',
    gap: '4px',
    margin: '0 4px',
    fontSize: '12px',
    color: 'var(--dim)',
  },
  '.cm-panel.cm-search input, .cm-panel.cm-search button': { margin: '2px 4px 2px 0' },
  '.cm-panel.cm-search input[type=checkbox]': { margin: '0' },
  '.cm-panel.cm-search [name=close]': { top: '8px', right: '8px', color: 'var(--dim)' },
  '.cm-textfield': {
    minHeight: '28px',
    padding: '0 8px',
    backgroundColor: 'var(--surface)',
    color: 'var(--text)',
    border: '1px solid var(--mark)',
    borderRadius: '6px',
    fontSize: '13px',
  },
  '.cm-button': {
    minHeight: '28px',
    padding: '0 8px',
    backgroundImage: 'none',
    backgroundColor: 'var(--surface)',
    color: 'var(--text)',
    border: '1px solid var(--line)',
    borderRadius: '6px',
    fontSize: '13px',
    '&:active': { backgroundImage: 'none', backgroundColor: 'var(--raised)' },
  },
  '.cm-textfield:focus-visible, .cm-button:focus-visible, .cm-panel.cm-search [name=close]:focus-visible':
    { outline: '2px solid var(--focus)', outlineOffset: '1px' },
});
