// Dates and times as the agent's documents have them.

"use strict";

const MILLISECONDS_A_MINUTE = 60000;
const FIRST_DAY = Date.UTC(1601, 0, 1);

function padded(number, width = 2) {
  return String(number).padStart(width, "0");
}

// What the package makes of a time, in local time: 12/31/2024 23:59:59, or undefined as it came.
function momentIfAny(text) {
  if (text === undefined) {
    return undefined;
  }
  const date = new Date(text);
  return `${padded(date.getMonth() + 1)}/${padded(date.getDate())}/${padded(date.getFullYear(), 4)} ` +
    `${padded(date.getHours())}:${padded(date.getMinutes())}:${padded(date.getSeconds())}`;
}

// The same, with the date that stands for none.
function localMoment(text) {
  return momentIfAny(text) ?? "12/30/1899 00:00:00";
}

// The local day of it: 2024-12-31, or undefined as it came.
function dayIfAny(text) {
  if (text === undefined) {
    return undefined;
  }
  const date = new Date(text);
  return `${padded(date.getFullYear(), 4)}-${padded(date.getMonth() + 1)}-${padded(date.getDate())}`;
}

// The dates of a series are minutes of its own clock, and pass through no zone.
function seriesDate(minutes) {
  return new Date(FIRST_DAY + minutes * MILLISECONDS_A_MINUTE);
}

// 2024/12/31
function seriesDay(minutes) {
  const date = seriesDate(minutes);
  return `${padded(date.getUTCFullYear(), 4)}/${padded(date.getUTCMonth() + 1)}/${padded(date.getUTCDate())}`;
}

function clock(date) {
  return `${padded(date.getUTCHours())}:${padded(date.getUTCMinutes())}:${padded(date.getUTCSeconds())}`;
}

// 2024/12/31 23:59:59
function seriesMoment(minutes) {
  return `${seriesDay(minutes)} ${clock(seriesDate(minutes))}`;
}

// 12/31/2024 23:59:59
function seriesEnd(minutes) {
  const date = seriesDate(minutes);
  return `${padded(date.getUTCMonth() + 1)}/${padded(date.getUTCDate())}/${padded(date.getUTCFullYear(), 4)} ${clock(date)}`;
}

function seriesMonth(minutes) {
  return seriesDate(minutes).getUTCMonth() + 1;
}

module.exports = { dayIfAny, localMoment, momentIfAny, padded, seriesDay, seriesEnd, seriesMoment, seriesMonth };
