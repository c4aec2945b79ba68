/* The plug-in module is linked from the core library as a whole; this unit only
   gives the module target a source of its own. */
const char vistarigModuleTag[] = "Vistarig";
