import { describe, expect, it } from 'vitest';
import { hover } from '../src/index.ts';
import { findWord } from '../src/words.ts';

const PIECE = `#define line(root, colour) #$root
$colour#
#const loud 80
#const half ~[loud / 2]
te(0, 4, 60, 120, s)
i1 = 6 0 -8 {
  p2 rh 4. 8,16
  p3 401.5
  p4(op) nox c+4 MO(-4 1 f [l c4 c5] e5) r
  p5(xx) $line(1'2) ~loud
  p6 EX(T*.5 1 I [p4 * ~[loud + 1]])
}
`;

/** What is said about the first text like this, or about the character `ahead` behind its begin. */
function said(text: string, ahead = 0, files = {}): ReturnType<typeof hover> {
  return hover(PIECE, PIECE.indexOf(text) + ahead, files);
}

/** The help of the table, where it has no links. */
function help(group: string, word: string): string {
  return findWord(group, word)?.help ?? 'no such word';
}

describe('the words of the tables', () => {
  it.each([
    ['te(0', 'statements', 'te'],
    ['#const', 'statements', '#const'],
    ['rh 4', 'modes', 'rh'],
    ['nox', 'modes', 'no'],
    ['op)', 'kinds', 'op'],
    ['MO(', 'functions', 'MO'],
    ['f [l', 'curves', 'f'],
    ['l c4', 'distributions', 'l'],
    ['s)', 'curves', 's'],
    ['-4 1 f', 'spans', '-8'],
    ['T*.5', 'spans', 'T*'],
    ['401.5', 'durations', '400'],
    ['I [', 'choices', 'I'],
    ['p4 *', 'choices', 'p'],
    ['* ~', 'operators', '*'],
    ['r\n  p5', 'notes', 'r'],
    ['i1 =', 'shape', 'i'],
    ['}', 'shape', '}'],
  ])('%s', (text, group, word) => {
    const { title, help: told } = said(text) ?? { title: '', help: '' };
    expect(title).toBe(findWord(group, word)?.forms.join(', '));
    expect(told.startsWith(help(group, word).split(', see [')[0] ?? '')).toBe(true);
    expect(told).not.toContain('](');
  });

  it('all that a note and a note length are made of', () => {
    expect(said('c+4', 1)?.help).toBe(
      [
        `\`c4\`: ${help('notes', 'c')}`,
        `\`c+4\`: ${help('marks', '+')}`,
        `\`c4\`: ${help('marks', '4')}`,
      ].join('\n\n'),
    );
    expect(said('8,16', 2)?.help).toContain(help('rhythms', ','));
    expect(said('4. 8')?.help).toContain(help('rhythms', '.'));
  });

  it('nothing in between', () => {
    expect(hover('te(60)   ', 8)).toBeUndefined();
    expect(hover('', 0)).toBeUndefined();
  });
});

describe('what the piece defines', () => {
  it('a p-field with its kind and its modes', () => {
    expect(said('p2 rh')).toMatchObject({ title: 'P2' });
    expect(said('p2 rh')?.help).toContain(`input mode \`rh\`: ${help('modes', 'rh')}`);
    expect(said('p4(op')?.help).toContain(`output kind \`op\`: ${help('kinds', 'op')}`);
    expect(said('p4(op')?.help).toContain(`input mode \`nox\`: ${help('modes', 'no')}`);
  });

  it('a macro with its body and its place', () => {
    const expected = { title: '$line', help: '`(root, colour) #$root $colour#`\n\nline 1' };
    expect(said('$line', 2)).toMatchObject(expected);
    expect(said('line(root')).toMatchObject(expected);
    const from = PIECE.indexOf('$line');
    expect(said('$line', 2)).toMatchObject({ from, to: from + 5 });
  });

  it('a constant with its value, wherever it stands', () => {
    const expected = { title: '~loud', help: '`80`\n\nline 3' };
    expect(said('~loud')).toMatchObject(expected);
    expect(said('loud / 2')).toMatchObject(expected);
    expect(said('loud + 1')).toMatchObject(expected);
    expect(said('half')).toMatchObject({ title: '~half', help: '`~[loud / 2]`\n\nline 4' });
  });

  it('what stands in another file, or nowhere', () => {
    const files = { 'more.txt': '\n#const far 3\n#define turn #1 2#' };
    expect(hover('te(~far)', 4, files)?.help).toBe('`3`\n\n`more.txt`, line 2');
    expect(hover('$turn', 2, files)?.help).toBe('`#1 2#`\n\n`more.txt`, line 3');
    expect(hover('te(~far)', 4)?.help).toContain('not defined');
  });
});
