// The fields of an appointment, with the names that the agent's documents have for them.

"use strict";

const { localMoment, momentIfAny, padded, seriesDay, seriesEnd, seriesMoment, seriesMonth } = require("./dates.js");

// The recurrence property (MS-OXOCAL 2.2.1.44).
const DAILY = 0x200a;
const MONTHLY = 0x200c;
const YEARLY = 0x200d;
const DAY_PATTERN = 0;
const NEVER = [0x2023, 0xffffffff];
const MINUTES_A_DAY = 1440;
const MONTHS_A_YEAR = 12;
const LAST_WEEK = 5;
const SUBJECT = 0x01, DELTA = 0x04, REMINDER = 0x08, LOCATION = 0x10, SUB_TYPE = 0x80;
// A longer text does not come with an exception.
const MOST_CHARACTERS = 384;

function encoded(text) {
  return text.length > MOST_CHARACTERS ? "" : Buffer.from(text, "utf16le").toString("base64");
}

function modification(day, exception, series) {
  const has = (flag) => (exception.overrideFlags & flag) !== 0;
  const lines = [
    ["subject", encoded(has(SUBJECT) ? exception.subject ?? "" : series.Description ?? "")],
    ["location", encoded(has(LOCATION) ? exception.location ?? "" : series.Location)],
    ["start", seriesMoment(exception.startDateTime)],
    ["end", seriesMoment(exception.endDateTime)],
    ["reminderset", has(REMINDER) ? exception.reminderSet ?? 0 : Number(series.lReminderMinutes !== -1)],
    ["reminderdelta", has(DELTA) ? exception.reminderDelta ?? 0 : series.lReminderMinutes],
    ["allday", has(SUB_TYPE) ? exception.subType ?? 0 : 0],
  ];
  const text = lines.map(([name, value]) => `\t<${name}>${value}</${name}>\r\n`).join("");
  return `<modification time = "${seriesDay(day)}">\r\n${text}</modification>\r\n`;
}

function exceptionRule({ recurrencePattern: pattern, exceptionInfo }, series) {
  const changed = new Set(pattern.modifiedInstanceDates);
  const deletions = pattern.deletedInstanceDates.filter((day) => !changed.has(day))
    .map((day) => `<deletion time = "${seriesDay(day)}"></deletion>\r\n`);
  const modifications = exceptionInfo.map(
    (exception, index) => modification(pattern.modifiedInstanceDates[index], exception, series));
  return `<exceptions>\r\n${deletions.join("")}${modifications.join("")}</exceptions>`;
}

function interval(pattern) {
  switch (pattern.recurFrequency) {
    case DAILY:
      return pattern.patternType === DAY_PATTERN ? Math.floor(pattern.period / MINUTES_A_DAY) : 0;
    case YEARLY:
      return Math.floor(pattern.period / MONTHS_A_YEAR);
    default:
      return pattern.period;
  }
}

function addEnd(fields, pattern) {
  const isEndless = NEVER.includes(pattern.endType);
  fields.dtRecurEndDate = isEndless ? "NULL" : seriesEnd(pattern.endDate);
  fields.bRecurHasEndDate = isEndless ? "FALSE" : "TRUE";
  fields.lRecurRepeat = isEndless ? 0 : pattern.occurrenceCount;
}

function addPattern(fields, recurrence) {
  const pattern = recurrence.recurrencePattern;
  if (pattern.recurFrequency === DAILY && pattern.patternType !== DAY_PATTERN) {
    fields.lRecurType = 2;
  }
  if (pattern.recurFrequency === YEARLY) {
    fields.lRecurMonth = seriesMonth(pattern.startDate);
  }
  const nth = pattern.patternTypeMonthNth;
  const week = nth?.n ?? 0;
  fields.lRecurInterval = interval(pattern);
  fields.lRecurInstance = nth !== undefined && [MONTHLY, YEARLY].includes(pattern.recurFrequency) ? 1 : 0;
  fields.lRecurWeekMask = nth?.dayOfWeekBits ?? pattern.patternTypeWeek?.dayOfWeekBits ?? 0;
  fields.lRecurWeekDay = week < LAST_WEEK ? week : -1;
  fields.lRecurDay = pattern.patternTypeMonth?.day ?? 0;
  addEnd(fields, pattern);
  if (pattern.deletedInstanceDates.length > 0) {
    fields.ExceptionRule = exceptionRule(recurrence, fields);
  }
}

function addRecurrence(fields, message) {
  if (!message.flag("appointment", 0x8223)) {
    fields.RecurType = 0;
    return;
  }
  fields.lRecurType = message.number("appointment", 0x8231);
  const recurrence = message.data.apptRecur;
  if (fields.lRecurType !== 0 && recurrence !== undefined) {
    addPattern(fields, recurrence);
  }
}

function addReminder(fields, message) {
  if (!message.flag("common", 0x8503)) {
    fields.lReminderMinutes = -1;
    fields.nRingTone = 0;
    return;
  }
  fields.nRingTone = !message.flag("common", 0x851c) || message.flag("common", 0x851e) ? 1 : 0;
  fields.lReminderMinutes = message.number("common", 0x8501);
}

function ruleText(date) {
  const rest = [date.month, date.day, date.hour, date.minute, 0, date.dayOfWeek];
  return padded(date.year, 4) + rest.map((number) => padded(number)).join("");
}

// Of an appointment without a zone the agent tells the machine's, whose rules a script does not have at hand.
function zoneText(zone) {
  if (!zone) {
    return "";
  }
  const { standardDate, daylightDate } = zone;
  const hasDaylight = Object.values(daylightDate).some((number) => number !== 0);
  const sign = zone.bias < 0 ? "" : "+";
  return `GMT:${sign}${zone.bias};DST:${hasDaylight ? Math.abs(zone.daylightBias) : 0};` +
    `STD:${ruleText(standardDate)};DLT:${ruleText(daylightDate)}`;
}

// A field that is undefined is not printed.
function appointmentFields(message, { folder, name }) {
  const fields = { CsFolder: folder };
  fields.CreateTime = momentIfAny(message.tagged(0x30070040));
  fields.lastModifiedTime = momentIfAny(message.tagged(0x30080040));
  fields.Description = message.tagged(0x0037001f);
  const priority = message.tagged(0x00260003);
  fields.Priority = priority === undefined ? undefined : priority | 0;
  // A file has no identifier; its name is what a script goes by.
  fields.PIMID = name;
  fields.Body = message.notes();
  fields.Location = message.text("appointment", 0x8208);
  fields.bAlldayEvent = message.flag("appointment", 0x8215) ? "TRUE" : "FALSE";
  fields.dtStartTime = localMoment(message.named("appointment", 0x820d));
  fields.dtEndTime = localMoment(message.named("appointment", 0x820e));
  addReminder(fields, message);
  addRecurrence(fields, message);
  fields.TimeZone = zoneText(message.named("appointment", 0x8233));
  fields.lCalType = 3;
  return fields;
}

module.exports = { appointmentFields };
