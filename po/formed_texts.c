/* Never compiled: texts for the template that no call in the sources spells out. */

/* The question before the scan log goes is formed with the log's path first and looked up whole,
   so that a catalogue has to hold it with the path in it. */
translate("Delete /var/scaning.log ?");
