// One message as the package reads it, with its properties found by tag and by name.

"use strict";

const MsgReader = require("@kenjiuno/msgreader").default;

const SETS = {
  appointment: "00062002-0000-0000-c000-000000000046",
  address: "00062004-0000-0000-c000-000000000046",
  common: "00062008-0000-0000-c000-000000000046",
};
const MANY_TEXTS = "101f";

class Message {
  constructor(bytes) {
    this.reader = new MsgReader(bytes);
    // The package knows few of the properties by a name of its own; the others come with this setting.
    this.reader.parserConfig = { includeRawProps: true };
    this.data = this.reader.getFileData();
    this.values = new Map();
    this.keywords = [];
    for (const property of this.data.rawProps ?? []) {
      this.take(property);
    }
  }

  take({ propertyTag, propertySet, propertyLid, propertyName, value }) {
    if (propertyName === "Keywords" && propertyTag.endsWith(MANY_TEXTS)) {
      this.keywords.push(value);
    } else if (propertySet !== undefined) {
      this.values.set(`${propertySet}/${parseInt(propertyLid, 16)}`, value);
    } else {
      this.values.set(parseInt(propertyTag, 16), value);
    }
  }

  kind() {
    return this.data.messageClass;
  }

  tagged(tag) {
    return this.values.get(tag);
  }

  named(set, number) {
    return this.values.get(`${SETS[set]}/${number}`);
  }

  text(set, number) {
    return this.named(set, number) ?? "";
  }

  flag(set, number) {
    return this.named(set, number) === true;
  }

  // The package reads numbers without a sign.
  number(set, number) {
    return (this.named(set, number) ?? 0) | 0;
  }

  notes() {
    const body = this.data.body ?? "";
    return body === "\r\n" || body === "\n" ? "" : body;
  }

  // The package hands out the streams of such a property as they are: the sizes of the texts, four bytes each, then the
  // property's entry in the list of all, then the texts.
  categories() {
    if (this.keywords.length === 0) {
      return "";
    }
    const count = this.keywords[0].length / 4;
    const texts = count === 0 ? [] : this.keywords.slice(-count);
    return texts.map((text) => Buffer.from(text).toString("utf16le").replace(/\0$/, "")).join(";");
  }

  // The bytes of the contact's picture, or undefined.
  picture() {
    const isPicture = (part) => (part.rawProps ?? []).some(
      ({ propertyTag, value }) => propertyTag === "7fff000b" && value === true);
    const part = this.data.attachments.find(isPicture);
    return part === undefined ? undefined : this.reader.getAttachment(part).content;
  }
}

module.exports = { Message };
