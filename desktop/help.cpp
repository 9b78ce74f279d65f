#include "desktop/help.h"

const WideView kHelpText =
    LR"(zebdesk reads and writes the address book and the calendar of the mail
system through its 64-bit agent.

USAGE
  zebdesk COMMAND [OPTION...]

COMMANDS
  setup              Gives the agent settings, PIMProfile.ini beside it, if it
                     has none. It never changes a file that is there.
  profiles           Prints the mail profiles; nobody has to log on for that.
  folders            Prints the stores and folders of a profile as a tree, and
                     the identifiers of the folders.
  count [KIND]       Prints how many items a read would deliver. KIND is
                     contacts, as without it, or calendars.
  read KIND          Reads all contacts, or all calendar items: as a table on
                     standard output, or as --out, --xml or --tabs say. With
                     --changed: only those that are new, changed or deleted.
  convert FILE...    Makes of documents that were read ones that can be written,
                     on standard output or with --out as files. Warns of what a
                     write of them would lose.
  write KIND FILE... Writes contacts, or calendar items, one document a file, and
                     prints what became of each. "-" stands for standard input.
                     With --delete in place of files: deletes one item.
  shutdown           Ends the agent, and comes back when it has ended.
  help               Prints this text.

OPTIONS
  --profile NAME     The mail profile to log on with. Without it: the default
                     profile.
  --folder ID        The folder to count, to read or to write to, by the
                     identifier that "folders" shows. Without it: the default
                     one.
  --agent PATH       The agent to start if none is running. Without it:
                     ZebAgentForOutlook64.exe beside this program. An agent that
                     is running already has to be this one for "profiles" and
                     "folders", which look into its settings.
  --out DIR          Writes one file an item to DIR, which is made if need be.
                     A file holds the item's document as it came, in UTF-8, and
                     its name depends on the item alone: reading again replaces
                     it. The picture of a contact goes to DIR under the same name
                     with .jpg, and PICPath names it there; see PICTURES. Other
                     files in DIR are left alone.
  --xml              Prints the documents one behind the other as they arrive;
                     for "profiles" and "folders" the one that the agent wrote.
  --tabs             Prints the table for another program: a tab between the
                     cells, nothing cut.
  --changed MAP      Reads what changed since MAP was written, with --out or
                     --xml. MAP is made by the first such read, which brings
                     everything, and belongs to one profile, kind and folder.
  --accept-deletions
                     Believes deletions however many they are.
  --new              Converts into new items and not into changes of the same
                     ones.
  --delete ID        Deletes the item with this PIMID.
  -q, --quiet        No progress bar and no summary; errors are still printed.
  -h, --help         Prints this text.

  An option can stand anywhere, and its value behind a blank or a "=". A name
  that begins with "-" goes behind "--".

THE AGENT
  The agent is started when none is running. It has no window, and it stays when
  zebdesk has finished, so that the next command is quick; "zebdesk shutdown"
  ends it. Each command logs on, does its work and logs off. The agent serves one
  desktop program at a time: a second one is turned away with exit status 7.
  The agent writes its log to the folder Logs beside it.

READING CHANGES
  The flag of a document, lFlag, says what happened to the item: 8 new, 4 changed,
  32 deleted. A deletion has the name of the item's file and replaces it. With
  --out, standard output lists the changes.
  MAP is brought up to date only when the read was complete and all its documents
  are written. After a read that was cut short the next one brings the same
  changes again, and those that came meanwhile: some twice, but none is lost.
  If all items that were known are reported as deleted (five or more), or more
  than half of fifty or more, something is wrong with the folder more often than
  not. Then neither the deletions nor MAP are kept, and the exit status is 10.
  A MAP that is damaged is kept under another name, and all items come as new.
  An item that the agent names but cannot send is left out of MAP: the exit status
  is 4, and the next read brings it again if it can be read by then.

WRITING
  A document that is written replaces the item as a whole: what it lacks is
  removed. Its lFlag says what to do: 8 adds, 4 changes, 32 deletes the item with
  its PIMID. To edit an item: read it with --out, convert its file, edit the
  result and write that.
  Of a contact, what has no place in a document to be written is dropped: the
  times, the full name (it is made of the parts of the name), blanks around a
  text, and all of an e-mail address but its text, so that one of the mail
  system's own kind becomes one of the internet. PICPath has to name the picture
  still, or it is removed.
  Of an appointment, dropped are the times of the document itself, and of a
  series its time zone, which becomes this machine's, and its exceptions: a write
  makes its deleted and changed instances like all others. "convert" warns of
  exceptions, of a series of another zone, and of whole days that are not from
  midnight to midnight here. A series of which a document does not tell how it
  recurs is not converted. One that has both a last day and a count is made to end
  by its count, so that it keeps both: to let it end on another day, set
  bRecurHasEndDate to TRUE.
  The agent does not say whether it wrote. zebdesk looks at the folder before and
  after, and so the result is one of these:
    written, deleted  the folder shows it
    refused           the folder is as it was, or the document was not sent
    unproven          it cannot be told: the item is not in the folder, nor in
                      those below it that reads go into (choose with --folder), or
                      it was changed once more by somebody else
    not tried         the command ended before its turn
  An item can be changed or deleted once in one command.

  TIME and IDENTIFIER are what the agent handed back, whatever the result. TIME is
  that of the item only if it was written. Otherwise it is the time of the attempt
  or that of the item as it was before, and 12/30/1899 00:00:00 says that the
  agent had none. What was not sent has neither.

PICTURES
  The agent puts the picture of a contact into a file of its own, PIC0.jpg,
  PIC1.jpg and so on, and begins with 0 again when it is started anew. With --out
  the picture is moved to DIR, so that the document names the right one for as
  long as DIR stays where it is; a contact without a picture has none in DIR. If
  it cannot be moved, the document names the agent's file, and the exit status is
  6 when all items are there. With --xml the documents name the agent's files, and
  a table leaves them where they are: use what you want of them before the agent
  is started the next time.

PROFILES AND FOLDERS
  The agent writes these lists to files, Profile.xml and Outlook.xml, in the
  folder below the user's application data folder that XMLPath in PIMProfile.ini
  names; "zebdesk setup" makes such settings. The agent reads them when it starts,
  so one that is running has to be ended with "zebdesk shutdown" first. The file
  of an earlier list is removed before a new one is asked for.
  --folder is for one command: the next one has the default folder again.

OUTPUT
  The table and the documents go to standard output, everything else to standard
  error. A console shows every character; a file or a pipe gets UTF-8 without a
  byte order mark. On a console the table's widest columns are cut to fit.
  The progress bar is drawn only if standard error is a console.

INTERRUPTING
  Ctrl+C tells the agent to stop after the item that it is sending. What has
  arrived by then is kept and printed, zebdesk logs off and ends with exit
  status 5. A second Ctrl+C ends it at once, without logging off. Changes of calendar
  items are read to their end all the same, and the exit status is 0 if all came.

EXIT STATUS
  0  done
  1  the command line is wrong
  2  the agent could not be started, does not answer or went away
  3  the logon was refused
  4  the read failed or was not complete, or a list could not be had
  5  interrupted
  6  the output or the map could not be written
  7  another desktop program is at work
  8  the folder is not there, or its store cannot be opened
  9  the agent has no settings for "profiles" and "folders"; see "setup"
 10  too many deletions to be believed; see --accept-deletions
 11  a document was not converted, or is not proved to be written

EXAMPLES
  zebdesk setup
  zebdesk folders --profile "Second home"
  zebdesk count
  zebdesk read contacts --out contacts
  zebdesk read contacts --profile "Second home" --tabs > contacts.tsv
  zebdesk read contacts --changed contacts.map --out contacts
  zebdesk convert contacts\contact-4d27e1c2417f2373.xml > edited.xml
  zebdesk write contacts edited.xml
  zebdesk read calendars
  zebdesk write calendars --delete 0000000011223344
)";
