// Holds each value against its schema, line by line of the standard input, and compares with the library's judgement.
import { createInterface } from "node:readline";
import Ajv from "ajv/dist/2020.js";

const ajv = new Ajv.default({ strict: true, allowUnionTypes: true });
ajv.addKeyword("x-legacyif");
let cases = 0;
let failures = 0;
for await (const line of createInterface({ input: process.stdin })) {
  const { schema, value, valid } = JSON.parse(line);
  ++cases;
  if (ajv.validate(schema, value) !== valid) {
    ++failures;
    console.error(`should be ${valid ? "valid" : "refused"}: ${line} ${ajv.errorsText()}`);
  }
}
console.log(`${cases} cases, ${failures} failures`);
process.exit(cases === 0 || failures !== 0 ? 1 : 0);
