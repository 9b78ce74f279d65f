#include "desktop/help.h"

const WideView kHelpText =
    LR"(zebdesk reads the address book of the mail system through its 64-bit agent.

USAGE
  zebdesk COMMAND [OPTION...]

COMMANDS
  count [contacts]   Prints how many items a read would deliver.
  read contacts      Reads all contacts: as a table on standard output, or as
                     --out, --xml or --tabs say.
  shutdown           Ends the agent, and comes back when it has ended.
  help               Prints this text.

OPTIONS
  --profile NAME     The mail profile to log on with. Without it: the default
                     profile.
  --agent PATH       The agent to start if none is running. Without it:
                     ZebAgentForOutlook64.exe beside this program.
  --out DIR          Writes one file an item to DIR, which is made if need be.
                     A file holds the item's document as it came, in UTF-8, and
                     its name depends on the item alone: reading again replaces
                     it. Other files in DIR are left alone.
  --xml              Prints the documents one behind the other as they arrive.
  --tabs             Prints the table for another program: a tab between the
                     cells, nothing cut.
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

OUTPUT
  The table and the documents go to standard output, everything else to standard
  error. A console shows every character; a file or a pipe gets UTF-8 without a
  byte order mark. On a console the table's widest columns are cut to fit.
  The progress bar is drawn only if standard error is a console.

INTERRUPTING
  Ctrl+C tells the agent to stop after the item that it is sending. What has
  arrived by then is kept and printed, zebdesk logs off and ends with exit
  status 5. A second Ctrl+C ends it at once, without logging off.

EXIT STATUS
  0  done
  1  the command line is wrong
  2  the agent could not be started, does not answer or went away
  3  the logon was refused
  4  the read failed or was not complete
  5  interrupted
  6  the output could not be written
  7  another desktop program is at work

EXAMPLES
  zebdesk count
  zebdesk read contacts --out contacts
  zebdesk read contacts --profile "Second home" --tabs > contacts.tsv
)";
