// The files of a piece: adding, renaming, taking out, bringing back. Pure: each makes the next project of a project.
import type { Project, State, Tab, TextFile } from './state.ts';

/** Why an include cannot have this name, as a sentence; empty: it can. `own`: the index of the file that has it now. */
export function nameTrouble(files: readonly TextFile[], name: string, own?: number): string {
  if (name.trim() === '') return 'A file needs a name.';
  if (/[|\n\r]/.test(name)) return 'The name of an include cannot hold a bar.';
  if (files.some((file, i) => i !== own && file.name === name))
    return `There is a file “${name}” already.`;
  return '';
}

/** A name for a new include that no file has. */
export function freeName(files: readonly TextFile[]): string {
  for (let n = 1; ; ++n) {
    const name = n === 1 ? 'include.txt' : `include${n}.txt`;
    if (nameTrouble(files, name) === '') return name;
  }
}

type Change = Pick<State, 'project' | 'tab'>;

export function withFile(project: Project, file: TextFile): Change {
  return { project: { ...project, files: [...project.files, file] }, tab: project.files.length };
}

export function withName(project: Project, index: number, name: string): Project {
  const file = project.files[index];
  if (!file || file.name === name) return project;
  return { ...project, files: project.files.with(index, { ...file, name }) };
}

/** Without an include; the piece itself stays. Where its tab was looked at, the one before it is. */
export function withoutFile(project: Project, index: number, tab: Tab): Change {
  if (index === 0 || !project.files[index]) return { project, tab };
  const files = project.files.filter((_, i) => i !== index);
  const next = typeof tab === 'number' && tab >= index ? tab - 1 : tab;
  return { project: { ...project, files }, tab: next };
}
