// The scopes of every line as vscode-textmate finds them: node textmate_kinds.js MODULES GRAMMARS JOBS
// MODULES is a node_modules folder, GRAMMARS a JSON object (scope name -> file, and "injectTo": scope -> injected scopes),
// JOBS a JSON array of [scope name, file]. Writes a JSON array of files, of lines, of [start, end, innermost scope].
'use strict';
const fs = require('fs');
const path = require('path');
const [modules, grammarsText, jobsText] = process.argv.slice(2);
const oniguruma = require(path.join(modules, 'vscode-oniguruma'));
const textmate = require(path.join(modules, 'vscode-textmate'));
const { injectTo, ...grammars } = JSON.parse(grammarsText);

async function main() {
  const wasm = fs.readFileSync(path.join(modules, 'vscode-oniguruma/release/onig.wasm'));
  await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.byteLength));
  const registry = new textmate.Registry({
    onigLib: Promise.resolve({
      createOnigScanner: (patterns) => new oniguruma.OnigScanner(patterns),
      createOnigString: (text) => new oniguruma.OnigString(text),
    }),
    loadGrammar: async (scope) =>
      scope in grammars ? textmate.parseRawGrammar(fs.readFileSync(grammars[scope], 'utf8'), grammars[scope]) : null,
    getInjections: (scope) => injectTo[scope],
  });
  const found = [];
  for (const [scope, file] of JSON.parse(jobsText)) {
    const grammar = await registry.loadGrammar(scope);
    let state = textmate.INITIAL;
    const lines = [];
    for (const line of fs.readFileSync(file, 'utf8').replace(/\n$/, '').split('\n')) {
      const { tokens, ruleStack } = grammar.tokenizeLine(line, state);
      state = ruleStack;
      lines.push(tokens.map((token) => [token.startIndex, Math.min(token.endIndex, line.length), token.scopes.at(-1)]));
    }
    found.push(lines);
  }
  process.stdout.write(JSON.stringify(found));
}

main().catch((error) => {
  console.error(error);
  process.exit(1);
});
