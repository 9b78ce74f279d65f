// The fields of a contact, with the names that the agent's documents have for them.

"use strict";

const { dayIfAny, momentIfAny } = require("./dates.js");

const TEXTS = [
  ["LastName", 0x3a11001f], ["MiddleName", 0x3a44001f], ["FirstName", 0x3a06001f], ["HomeNumber1", 0x3a09001f],
  ["HomeFax", 0x3a25001f], ["BusinessNumber", 0x3a08001f], ["BusinessFax", 0x3a24001f], ["Mobile1", 0x3a1c001f],
  ["Pager1", 0x3a21001f], ["HomeNumber2", 0x3a2f001f], ["BusinessNumber2", 0x3a1b001f], ["OtherNumber", 0x3a1f001f],
  ["OtherFax", 0x3a23001f], ["CompanyNumber", 0x3a57001f], ["PrimaryNumber", 0x3a1a001f],
  ["AssistantNumber", 0x3a2e001f], ["IsdnNumber", 0x3a2d001f], ["TelexNumber", 0x3a2c001f],
  ["TtyTddNumber", 0x3a4b001f], ["CarNumber", 0x3a1e001f], ["RadioNumber", 0x3a1d001f],
  ["CallBackNumber", 0x3a02001f], ["Web1", 0x3a50001f], ["Web2", 0x3a51001f], ["CompanyX", 0x3a16001f],
  ["JobTitle", 0x3a17001f], ["NickName", 0x3a4f001f], ["HomeCountry", 0x3a5a001f], ["HomeState", 0x3a5c001f],
  ["HomeCity", 0x3a59001f], ["HomeStreet1", 0x3a5d001f], ["HomeZip", 0x3a5b001f], ["HomePobox", 0x3a5e001f],
  ["OtherCountry", 0x3a60001f], ["OtherState", 0x3a62001f], ["OtherCity", 0x3a5f001f], ["OtherStreet1", 0x3a63001f],
  ["OtherZip", 0x3a61001f], ["OtherPobox", 0x3a64001f], ["PrefixName", 0x3a05001f], ["SuffixName", 0x3a45001f],
];
const DAYS = [["Anniversary", 0x3a410040], ["Birthday", 0x3a420040]];
const NAMED = [
  ["FULLNAME", 0x8005], ["SP-BUSINESSCOUNTRY", 0x8049], ["SP-BUSINESSCITY", 0x8046], ["SP-BUSINESSSTATE", 0x8047],
  ["SP-BUSINESSSTREET1", 0x8045], ["SP-BUSINESSZIP", 0x8048], ["SP-BUSINESSPOBOX", 0x804a],
  ["SP-YOMIFIRSTNAME", 0x802c], ["SP-YOMILASTNAME", 0x802d],
];
const MAILS = [["SP-EMAIL1", 0x8083], ["SP-EMAIL2", 0x8093], ["SP-EMAIL3", 0x80a3]];
const SERVICES = ["AIM:", "WINDOWSLIVE:", "YAHOO:", "SKYPE:", "QQ:", "GTALK:", "ICQ:", "JABBER:"];
const NO_SERVICE = 4022;

// Without a type there is no address; one of an Exchange mailbox has a readable twin.
function mailAddress(message, number) {
  const type = message.named("address", number - 1);
  if (type === undefined) {
    return "";
  }
  return message.text("address", type === "EX" ? number + 1 : number);
}

function instantAddress(text) {
  const service = text.slice(0, text.indexOf(":") + 1);
  const place = SERVICES.indexOf(service.toUpperCase());
  return place < 0 ? { type: NO_SERVICE, text } : { type: NO_SERVICE + 1 + place, text: text.slice(service.length) };
}

// savePicture gets the bytes of the picture and gives the path of the file that it wrote. A field that is undefined is not
// printed.
function contactFields(message, { folder, name, savePicture }) {
  const fields = { CsFolder: folder };
  fields.CreateTime = momentIfAny(message.tagged(0x30070040));
  fields.lastModifiedTime = momentIfAny(message.tagged(0x30080040));
  for (const [field, tag] of TEXTS) {
    fields[field] = message.tagged(tag);
  }
  for (const [field, tag] of DAYS) {
    fields[field] = dayIfAny(message.tagged(tag));
  }
  // A file has no identifier; its name is what a script goes by.
  fields.PIMID = name;
  const picture = message.picture();
  fields.PICPath = picture === undefined ? undefined : savePicture(picture);
  for (const [field, number] of NAMED) {
    fields[field] = message.text("address", number);
  }
  fields["SP-BODY"] = message.notes();
  for (const [field, number] of MAILS) {
    fields[field] = mailAddress(message, number);
  }
  const instant = instantAddress(message.text("address", 0x8062));
  fields["SP-IMADRESS"] = instant.text;
  fields.IMType = instant.type;
  fields["SP-CATEGORIES"] = message.categories();
  return fields;
}

module.exports = { contactFields };
