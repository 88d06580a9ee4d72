// The browser tests' own promise: a test that fails, at an assertion or at
// its time limit, ends the run within a minute with its failure reported as
// itself, its page, server and browser closed (fixtures/failing_page.js).
'use strict';

const assert = require('node:assert/strict');
const { spawn } = require('node:child_process');
const path = require('node:path');
const { test } = require('node:test');

const LIMIT = 60000;

test('failing browser tests end the run within a minute, each failure reported', { timeout: 2 * LIMIT }, async () => {
  const started = Date.now();
  // A run of its own, not a part of this one (which node tells by NODE_TEST_CONTEXT).
  const env = { ...process.env };
  delete env.NODE_TEST_CONTEXT;
  const run = spawn(process.execPath, ['--test', path.join(__dirname, 'fixtures/failing_page.js')],
                    { env, stdio: ['ignore', 'pipe', 'pipe'] });
  let output = '';
  run.stdout.on('data', (chunk) => { output += chunk; });
  run.stderr.on('data', (chunk) => { output += chunk; });
  const killer = setTimeout(() => run.kill('SIGKILL'), LIMIT);
  const [code, signal] = await new Promise((resolve) => run.on('close', (...ended) => resolve(ended)));
  clearTimeout(killer);
  const seconds = (Date.now() - started) / 1000;
  assert.equal(signal, null, `the run was still going after ${LIMIT / 1000} s:\n${output}`);
  assert.equal(code, 1, output);
  assert.match(output, /not ok 1 - fails at an assertion while the show plays/);
  assert.match(output, /the deliberate failure/);
  assert.match(output, /not ok 2 - fails at its time limit while the show plays/);
  assert.match(output, /test timed out after 5000ms/);
  console.log(`the run ended ${seconds.toFixed(1)} s after it started`);
});
