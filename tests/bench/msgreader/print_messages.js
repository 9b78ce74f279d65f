#!/usr/bin/env node
// Prints the contacts or appointments of a folder of .msg files, a line of JSON each, with the fields of the agent's
// documents: print_messages.js FOLDER contacts|appointments PICTURES [REPETITIONS TIMES]
//
// Pictures of contacts go into the folder PICTURES. With REPETITIONS the folder is read once and then as often as this says,
// and the seconds of each further time, which find the program warm, are written into the file TIMES, a number a line.

"use strict";

const fs = require("fs");
const path = require("path");
const { performance } = require("perf_hooks");

const { appointmentFields } = require("./appointment.js");
const { contactFields } = require("./contact.js");
const { Message } = require("./message.js");

const KINDS = {
  contacts: { messageClass: "IPM.Contact", fields: contactFields },
  appointments: { messageClass: "IPM.Appointment", fields: appointmentFields },
};

function printFolder(folder, { messageClass, fields }, pictures) {
  let pictureNumber = 0;
  const savePicture = (bytes) => {
    const file = path.join(pictures, `PIC${pictureNumber++}.jpg`);
    fs.writeFileSync(file, bytes);
    return file;
  };
  for (const name of fs.readdirSync(folder)) {
    if (!name.toLowerCase().endsWith(".msg")) {
      continue;
    }
    const message = new Message(fs.readFileSync(path.join(folder, name)));
    if (message.kind() === messageClass) {
      const item = fields(message, { folder: path.basename(folder), name, savePicture });
      console.log(JSON.stringify(item));
    }
  }
}

function secondsOf(work) {
  const start = performance.now();
  work();
  return (performance.now() - start) / 1000;
}

function main([folder, kindName, pictures, repetitions, times]) {
  const kind = KINDS[kindName];
  if (kind === undefined || pictures === undefined) {
    process.stderr.write("usage: print_messages.js FOLDER contacts|appointments PICTURES [REPETITIONS TIMES]\n");
    return 2;
  }
  const print = () => printFolder(folder, kind, pictures);
  print();
  if (repetitions !== undefined) {
    const seconds = Array.from({ length: Number(repetitions) }, () => secondsOf(print));
    fs.writeFileSync(times, seconds.map((number) => `${number}\n`).join(""));
  }
  return 0;
}

process.exitCode = main(process.argv.slice(2));
