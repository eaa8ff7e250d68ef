declare module 'virtual:csound' {
  /** Where Csound's module lies, relative to the page. */
  const address: string;
  export default address;
}
