<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fi">
<context>
    <name>DataSheetPanel</name>
    <message>
        <source>Data</source>
        <translation>Data</translation>
    </message>
    <message>
        <source>Not Identified</source>
        <translation>Ei tunnistettu</translation>
    </message>
    <message>
        <source>Green once the row of the elements is known</source>
        <translation>Vihreä, kun alkuaineiden rivi tunnetaan</translation>
    </message>
    <message>
        <source>Structure</source>
        <translation>Rakenne</translation>
    </message>
    <message>
        <source>Identify</source>
        <translation>Tunnista</translation>
    </message>
    <message>
        <source>Find the structure of the table</source>
        <translation>Selvitä taulukon rakenne</translation>
    </message>
    <message>
        <source>Headers on row</source>
        <translation>Otsikot rivillä</translation>
    </message>
    <message>
        <source>HEADER</source>
        <translation>HEADER</translation>
    </message>
    <message>
        <source>Number of the row with the titles of the columns; 0 for none</source>
        <translation>Sarakkeiden otsikkorivin numero; 0, jos ei ole</translation>
    </message>
    <message>
        <source>0</source>
        <translation>0</translation>
    </message>
    <message>
        <source>One further</source>
        <translation>Yksi eteenpäin</translation>
    </message>
    <message>
        <source>One back</source>
        <translation>Yksi taaksepäin</translation>
    </message>
    <message>
        <source>-Hdr-</source>
        <translation>-Hdr-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the titles of the columns</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla ovat sarakkeiden otsikot</translation>
    </message>
    <message>
        <source>ELEMENT</source>
        <translation>ELEMENT</translation>
    </message>
    <message>
        <source>Number of the row with the element or oxide of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen alkuaine tai oksidi; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Ele-</source>
        <translation>-Ele-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the element or oxide of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen alkuaine tai oksidi</translation>
    </message>
    <message>
        <source>METHOD</source>
        <translation>METHOD</translation>
    </message>
    <message>
        <source>Number of the row with the analytical method of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen analyysimenetelmä; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Met-</source>
        <translation>-Met-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the analytical method of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen analyysimenetelmä</translation>
    </message>
    <message>
        <source>UNIT</source>
        <translation>UNIT</translation>
    </message>
    <message>
        <source>Number of the row with the unit of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen yksikkö; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Uni-</source>
        <translation>-Uni-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the unit of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen yksikkö</translation>
    </message>
    <message>
        <source>Split</source>
        <translation>Pilko</translation>
    </message>
    <message>
        <source>Split the titles of the HEADER row into element, method, unit and so on</source>
        <translation>Pilko HEADER-rivin otsikot alkuaineeksi, menetelmäksi, yksiköksi ja niin edelleen</translation>
    </message>
    <message>
        <source>First data row is</source>
        <translation>Ensimmäinen datarivi</translation>
    </message>
    <message>
        <source>Number of the row with the first sample; 0 for none</source>
        <translation>Ensimmäisen näytteen rivin numero; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-1-</source>
        <translation>-1-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the first sample</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: ensimmäisen näytteen rivi</translation>
    </message>
    <message>
        <source>ID Column is:</source>
        <translation>ID-sarake:</translation>
    </message>
    <message>
        <source>Number of the column with the identifiers of the samples; 0 for none</source>
        <translation>Näytetunnusten sarakkeen numero; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-ID-</source>
        <translation>-ID-</translation>
    </message>
    <message>
        <source>Click here, then on a column of the table: the column with the identifiers of the samples</source>
        <translation>Napsauta tästä ja sitten taulukon saraketta: näytetunnusten sarake</translation>
    </message>
    <message>
        <source>MINERAL Col is:</source>
        <translation>MINERAL-sarake:</translation>
    </message>
    <message>
        <source>Number of the column with the mineral of each row; 0 for none</source>
        <translation>Sen sarakkeen numero, jossa on kunkin rivin mineraali; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Min-</source>
        <translation>-Min-</translation>
    </message>
    <message>
        <source>Click here, then on a column of the table: the column with the mineral of each row</source>
        <translation>Napsauta tästä ja sitten taulukon saraketta: sarake, jossa on kunkin rivin mineraali</translation>
    </message>
    <message>
        <source>Database information on row</source>
        <translation>Tietokantatiedot rivillä</translation>
    </message>
    <message>
        <source>TABLE</source>
        <translation>TABLE</translation>
    </message>
    <message>
        <source>Number of the row with the database table of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen tietokantataulu; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Tab-</source>
        <translation>-Tab-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the database table of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen tietokantataulu</translation>
    </message>
    <message>
        <source>FIELD</source>
        <translation>FIELD</translation>
    </message>
    <message>
        <source>Number of the row with the database field of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen tietokantakenttä; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Fld-</source>
        <translation>-Fld-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the database field of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen tietokantakenttä</translation>
    </message>
    <message>
        <source>TYPE</source>
        <translation>TYPE</translation>
    </message>
    <message>
        <source>Number of the row with the field type of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen kenttätyyppi; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Typ-</source>
        <translation>-Typ-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the field type of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen kenttätyyppi</translation>
    </message>
    <message>
        <source>LENGTH</source>
        <translation>LENGTH</translation>
    </message>
    <message>
        <source>Number of the row with the field length of each column; 0 for none</source>
        <translation>Sen rivin numero, jolla on kunkin sarakkeen kentän pituus; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Len-</source>
        <translation>-Len-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the field length of each column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on kunkin sarakkeen kentän pituus</translation>
    </message>
    <message>
        <source>DIGITS</source>
        <translation>DIGITS</translation>
    </message>
    <message>
        <source>Number of the row with the number of digits kept at saving; 0 for none</source>
        <translation>Sen rivin numero, jolla on tallennettavien numeroiden määrä; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Dig-</source>
        <translation>-Dig-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the number of digits kept at saving</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on tallennettavien numeroiden määrä</translation>
    </message>
    <message>
        <source>INDEXED</source>
        <translation>INDEXED</translation>
    </message>
    <message>
        <source>Number of the row with the mark of the ID column; 0 for none</source>
        <translation>Sen rivin numero, jolla on ID-sarakkeen merkki; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Idx-</source>
        <translation>-Idx-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the mark of the ID column</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on ID-sarakkeen merkki</translation>
    </message>
    <message>
        <source>MULTIPLIER</source>
        <translation>MULTIPLIER</translation>
    </message>
    <message>
        <source>Number of the row with the factor applied at saving; 0 for none</source>
        <translation>Sen rivin numero, jolla on tallennettaessa käytettävä kerroin; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Mul-</source>
        <translation>-Mul-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the factor applied at saving</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on tallennettaessa käytettävä kerroin</translation>
    </message>
    <message>
        <source>IDENTIFIED</source>
        <translation>IDENTIFIED</translation>
    </message>
    <message>
        <source>Number of the row with the mark of identified columns; 0 for none</source>
        <translation>Sen rivin numero, jolla on tunnistettujen sarakkeiden merkki; 0, jos ei ole</translation>
    </message>
    <message>
        <source>-Idf-</source>
        <translation>-Idf-</translation>
    </message>
    <message>
        <source>Click here, then on a row of the table: the row with the mark of identified columns</source>
        <translation>Napsauta tästä ja sitten taulukon riviä: rivi, jolla on tunnistettujen sarakkeiden merkki</translation>
    </message>
    <message>
        <source>Data orientation</source>
        <translation>Datan suunta</translation>
    </message>
    <message>
        <source>Horizontal (row wise)</source>
        <translation>Vaaka (riveittäin)</translation>
    </message>
    <message>
        <source>A sample in each row</source>
        <translation>Näyte joka rivillä</translation>
    </message>
    <message>
        <source>Vertical (column wise)</source>
        <translation>Pysty (sarakkeittain)</translation>
    </message>
    <message>
        <source>A sample in each column: transpose the table to work with it</source>
        <translation>Näyte joka sarakkeessa: transponoi taulukko, jotta sitä voi käyttää</translation>
    </message>
    <message>
        <source>Transpose</source>
        <translation>Transponoi</translation>
    </message>
    <message>
        <source>Make rows of the columns</source>
        <translation>Tee sarakkeista rivejä</translation>
    </message>
    <message>
        <source>Hide system rows (except Header)</source>
        <translation>Piilota järjestelmärivit (paitsi Header)</translation>
    </message>
    <message>
        <source>Show only the HEADER row of the rows that describe the columns</source>
        <translation>Näytä sarakkeita kuvaavista riveistä vain HEADER</translation>
    </message>
    <message>
        <source>Thesaurus</source>
        <translation>Sanasto</translation>
    </message>
    <message>
        <source>Click a column of the table: its heading becomes a rule of the thesaurus, or the rule that is there becomes the current one.</source>
        <translation>Napsauta taulukon saraketta: sen otsikosta tulee sanaston sääntö, tai olemassa oleva sääntö valitaan.</translation>
    </message>
    <message>
        <source>Show Thesaurus</source>
        <translation>Näytä sanasto</translation>
    </message>
    <message>
        <source>Open the window in which the rules of the thesaurus are edited</source>
        <translation>Avaa ikkuna, jossa sanaston sääntöjä muokataan</translation>
    </message>
</context>
<context>
    <name>EditHistory</name>
    <message>
        <source>Typing</source>
        <translation>kirjoitus</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>poisto</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>tyhjennys</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>leikkaus</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>liittäminen</translation>
    </message>
    <message>
        <source>Paste values</source>
        <translation>arvojen liittäminen</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>siirto</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>täyttö</translation>
    </message>
    <message>
        <source>Fill down</source>
        <translation>täyttö alas</translation>
    </message>
    <message>
        <source>Fill right</source>
        <translation>täyttö oikealle</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>lajittelu</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>korvaus</translation>
    </message>
    <message>
        <source>Replace all</source>
        <translation>kaikkien korvaus</translation>
    </message>
    <message>
        <source>Insert rows</source>
        <translation>rivien lisäys</translation>
    </message>
    <message>
        <source>Delete rows</source>
        <translation>rivien poisto</translation>
    </message>
    <message>
        <source>Insert columns</source>
        <translation>sarakkeiden lisäys</translation>
    </message>
    <message>
        <source>Delete columns</source>
        <translation>sarakkeiden poisto</translation>
    </message>
    <message>
        <source>Insert cells</source>
        <translation>solujen lisäys</translation>
    </message>
    <message>
        <source>Delete cells</source>
        <translation>solujen poisto</translation>
    </message>
    <message>
        <source>Bold</source>
        <translation>lihavointi</translation>
    </message>
    <message>
        <source>Italic</source>
        <translation>kursivointi</translation>
    </message>
    <message>
        <source>Underline</source>
        <translation>alleviivaus</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>fontti</translation>
    </message>
    <message>
        <source>Text colour</source>
        <translation>tekstin väri</translation>
    </message>
    <message>
        <source>Number format</source>
        <translation>lukumuoto</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>tasaus</translation>
    </message>
    <message>
        <source>Wrap text</source>
        <translation>tekstin rivitys</translation>
    </message>
    <message>
        <source>Borders</source>
        <translation>reunaviivat</translation>
    </message>
    <message>
        <source>Column width</source>
        <translation>sarakkeen leveys</translation>
    </message>
    <message>
        <source>Hide rows</source>
        <translation>rivien piilotus</translation>
    </message>
    <message>
        <source>Show rows</source>
        <translation>rivien näyttäminen</translation>
    </message>
    <message>
        <source>Hide columns</source>
        <translation>sarakkeiden piilotus</translation>
    </message>
    <message>
        <source>Show columns</source>
        <translation>sarakkeiden näyttäminen</translation>
    </message>
    <message>
        <source>Freeze rows</source>
        <translation>rivien kiinnitys</translation>
    </message>
    <message>
        <source>Unfreeze rows</source>
        <translation>rivien vapautus</translation>
    </message>
    <message>
        <source>Column heading</source>
        <translation>sarakkeen otsikko</translation>
    </message>
    <message>
        <source>Row heading</source>
        <translation>rivin otsikko</translation>
    </message>
    <message>
        <source>Rename sheet</source>
        <translation>taulukon nimeäminen</translation>
    </message>
    <message>
        <source>Insert sheet</source>
        <translation>taulukon lisäys</translation>
    </message>
    <message>
        <source>Delete sheet</source>
        <translation>taulukon poisto</translation>
    </message>
</context>
<context>
    <name>GridMenus</name>
    <message>
        <source>F&amp;ormat</source>
        <translation>M&amp;uotoilu</translation>
    </message>
    <message>
        <source>Fi&amp;ll</source>
        <translation>Tä&amp;ytä</translation>
    </message>
    <message>
        <source>&amp;Data</source>
        <translation>&amp;Data</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Näytä</translation>
    </message>
</context>
<context>
    <name>MDIMain</name>
    <message>
        <source>Lodex Geo</source>
        <translation>Lodex Geo</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Tiedosto</translation>
    </message>
    <message>
        <source>&amp;Recent files</source>
        <translation>&amp;Viimeksi avatut tiedostot</translation>
    </message>
    <message>
        <source>Recent da&amp;tabases</source>
        <translation>Viimeksi avatut tietoka&amp;nnat</translation>
    </message>
    <message>
        <source>&amp;Calculation</source>
        <translation>&amp;Laskenta</translation>
    </message>
    <message>
        <source>&amp;Database</source>
        <translation>Tieto&amp;kanta</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Ikkuna</translation>
    </message>
    <message>
        <source>&amp;Appearance</source>
        <translation>&amp;Ulkoasu</translation>
    </message>
    <message>
        <source>Lan&amp;guage</source>
        <translation>&amp;Kieli</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>Ikku&amp;nat</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Ohje</translation>
    </message>
    <message>
        <source>Tool bar</source>
        <translation>Työkalurivi</translation>
    </message>
    <message>
        <source>Stages</source>
        <translation>Vaiheet</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Avaa</translation>
    </message>
    <message>
        <source>Ctrl+1</source>
        <translation>Ctrl+1</translation>
    </message>
    <message>
        <source>Identify</source>
        <translation>Tunnista</translation>
    </message>
    <message>
        <source>Ctrl+2</source>
        <translation>Ctrl+2</translation>
    </message>
    <message>
        <source>Calculate</source>
        <translation>Laske</translation>
    </message>
    <message>
        <source>Ctrl+3</source>
        <translation>Ctrl+3</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Tallenna</translation>
    </message>
    <message>
        <source>Ctrl+4</source>
        <translation>Ctrl+4</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Loppu</translation>
    </message>
    <message>
        <source>Ctrl+5</source>
        <translation>Ctrl+5</translation>
    </message>
    <message>
        <source>Open analysis files or a database, or drop files on the window.</source>
        <translation>Avaa analyysitiedostoja tai tietokanta, tai pudota tiedostoja ikkunaan.</translation>
    </message>
    <message>
        <source>Open...</source>
        <translation>Avaa...</translation>
    </message>
    <message>
        <source>mnuOpen</source>
        <translation>mnuOpen</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Uusi</translation>
    </message>
    <message>
        <source>mnuNew</source>
        <translation>mnuNew</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Liitä</translation>
    </message>
    <message>
        <source>mnuPaste</source>
        <translation>mnuPaste</translation>
    </message>
    <message>
        <source>Database</source>
        <translation>Tietokanta</translation>
    </message>
    <message>
        <source>mnuOpenDB</source>
        <translation>mnuOpenDB</translation>
    </message>
    <message>
        <source>Identify &gt;&gt;</source>
        <translation>Tunnista &gt;&gt;</translation>
    </message>
    <message>
        <source>Data sheets to identify:</source>
        <translation>Tunnistettavat datataulukot:</translation>
    </message>
    <message>
        <source>Use thesaurus</source>
        <translation>Käytä sanastoa</translation>
    </message>
    <message>
        <source>Only columns without X</source>
        <translation>Vain sarakkeet, joissa ei ole X:ää</translation>
    </message>
    <message>
        <source>File name is the method</source>
        <translation>Tiedoston nimi on menetelmä</translation>
    </message>
    <message>
        <source>Unidentified columns to table</source>
        <translation>Tunnistamattomat sarakkeet tauluun</translation>
    </message>
    <message>
        <source>BDLC=OFF</source>
        <translation>BDLC=OFF</translation>
    </message>
    <message>
        <source>Calculate &gt;&gt;</source>
        <translation>Laske &gt;&gt;</translation>
    </message>
    <message>
        <source>Samples from:</source>
        <translation>Näytteet:</translation>
    </message>
    <message>
        <source>Methods of</source>
        <translation>Menetelmät</translation>
    </message>
    <message>
        <source>Ask when ambiguous</source>
        <translation>Kysy, kun on monta vaihtoehtoa</translation>
    </message>
    <message>
        <source>Save in database</source>
        <translation>Tallenna tietokantaan</translation>
    </message>
    <message>
        <source>Sources...</source>
        <translation>Lähteet...</translation>
    </message>
    <message>
        <source>mnuSources</source>
        <translation>mnuSources</translation>
    </message>
    <message>
        <source>Save &gt;&gt;</source>
        <translation>Tallenna &gt;&gt;</translation>
    </message>
    <message>
        <source>Sheets to save:</source>
        <translation>Tallennettavat taulukot:</translation>
    </message>
    <message>
        <source>Destination database:</source>
        <translation>Kohdetietokanta:</translation>
    </message>
    <message>
        <source>Define...</source>
        <translation>Määritä...</translation>
    </message>
    <message>
        <source>Merge</source>
        <translation>Yhdistä</translation>
    </message>
    <message>
        <source>Overwrite</source>
        <translation>Korvaa</translation>
    </message>
    <message>
        <source>Save in database now</source>
        <translation>Tallenna tietokantaan nyt</translation>
    </message>
    <message>
        <source>Finish &gt;&gt;</source>
        <translation>Lopeta &gt;&gt;</translation>
    </message>
    <message>
        <source>The work is done. Saved samples can be viewed, or the next files opened.</source>
        <translation>Työ on valmis. Tallennettuja näytteitä voi katsella, tai seuraavat tiedostot voi avata.</translation>
    </message>
    <message>
        <source>View data...</source>
        <translation>Katso dataa...</translation>
    </message>
    <message>
        <source>Combine</source>
        <translation>Yhdistä</translation>
    </message>
    <message>
        <source>mnuCombine</source>
        <translation>mnuCombine</translation>
    </message>
    <message>
        <source>&lt;&lt; Back</source>
        <translation>&lt;&lt; Takaisin</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Avaa...</translation>
    </message>
    <message>
        <source>Ctrl+O</source>
        <translation>Ctrl+O</translation>
    </message>
    <message>
        <source>&amp;New data sheet</source>
        <translation>&amp;Uusi datataulukko</translation>
    </message>
    <message>
        <source>Ctrl+N</source>
        <translation>Ctrl+N</translation>
    </message>
    <message>
        <source>&amp;Paste as new data sheet</source>
        <translation>&amp;Liitä uutena datataulukkona</translation>
    </message>
    <message>
        <source>Ctrl+Shift+V</source>
        <translation>Ctrl+Shift+V</translation>
    </message>
    <message>
        <source>Open &amp;database...</source>
        <translation>Avaa tieto&amp;kanta...</translation>
    </message>
    <message>
        <source>Ctrl+Shift+O</source>
        <translation>Ctrl+Shift+O</translation>
    </message>
    <message>
        <source>&amp;Close data sheet</source>
        <translation>&amp;Sulje datataulukko</translation>
    </message>
    <message>
        <source>&amp;Edit settings...</source>
        <translation>&amp;Muokkaa asetuksia...</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>L&amp;opeta</translation>
    </message>
    <message>
        <source>Ctrl+Q</source>
        <translation>Ctrl+Q</translation>
    </message>
    <message>
        <source>&amp;Identify</source>
        <translation>&amp;Tunnista</translation>
    </message>
    <message>
        <source>F5</source>
        <translation>F5</translation>
    </message>
    <message>
        <source>&amp;Thesaurus</source>
        <translation>&amp;Sanasto</translation>
    </message>
    <message>
        <source>Ctrl+T</source>
        <translation>Ctrl+T</translation>
    </message>
    <message>
        <source>Calculation &amp;group...</source>
        <translation>Laskenta&amp;ryhmä...</translation>
    </message>
    <message>
        <source>Ctrl+G</source>
        <translation>Ctrl+G</translation>
    </message>
    <message>
        <source>&amp;Sources...</source>
        <translation>L&amp;ähteet...</translation>
    </message>
    <message>
        <source>F6</source>
        <translation>F6</translation>
    </message>
    <message>
        <source>&amp;Calculate</source>
        <translation>&amp;Laske</translation>
    </message>
    <message>
        <source>F9</source>
        <translation>F9</translation>
    </message>
    <message>
        <source>Si&amp;ngle sample</source>
        <translation>&amp;Yksittäinen näyte</translation>
    </message>
    <message>
        <source>F7</source>
        <translation>F7</translation>
    </message>
    <message>
        <source>Modal composition</source>
        <translation>Modaalikoostumus</translation>
    </message>
    <message>
        <source>Minerals</source>
        <translation>Mineraalit</translation>
    </message>
    <message>
        <source>Liberation</source>
        <translation>Puhtaaksijauhatus</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automaattinen</translation>
    </message>
    <message>
        <source>&amp;Source database</source>
        <translation>&amp;Lähdetietokanta</translation>
    </message>
    <message>
        <source>&amp;Destination database</source>
        <translation>&amp;Kohdetietokanta</translation>
    </message>
    <message>
        <source>Sa&amp;ve in database</source>
        <translation>&amp;Tallenna tietokantaan</translation>
    </message>
    <message>
        <source>F8</source>
        <translation>F8</translation>
    </message>
    <message>
        <source>&amp;Combine databases</source>
        <translation>&amp;Yhdistä tietokantoja</translation>
    </message>
    <message>
        <source>As the &amp;system</source>
        <translation>Kuten &amp;järjestelmä</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Vaalea</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Tumma</translation>
    </message>
    <message>
        <source>&amp;English</source>
        <translation>&amp;English</translation>
    </message>
    <message>
        <source>S&amp;uomi</source>
        <translation>&amp;Suomi</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>&amp;Limittäin</translation>
    </message>
    <message>
        <source>&amp;Tile</source>
        <translation>&amp;Allekkain</translation>
    </message>
    <message>
        <source>Tile &amp;vertically</source>
        <translation>&amp;Vierekkäin</translation>
    </message>
    <message>
        <source>Calculation &amp;result</source>
        <translation>Laskennan &amp;tulos</translation>
    </message>
    <message>
        <source>Ctrl+R</source>
        <translation>Ctrl+R</translation>
    </message>
    <message>
        <source>&amp;Log</source>
        <translation>L&amp;oki</translation>
    </message>
    <message>
        <source>Ctrl+L</source>
        <translation>Ctrl+L</translation>
    </message>
    <message>
        <source>&amp;Stages</source>
        <translation>Vai&amp;heet</translation>
    </message>
    <message>
        <source>F11</source>
        <translation>F11</translation>
    </message>
    <message>
        <source>Tool &amp;bar</source>
        <translation>T&amp;yökalurivi</translation>
    </message>
    <message>
        <source>F1</source>
        <translation>F1</translation>
    </message>
    <message>
        <source>Tutorial</source>
        <translation>Opastus</translation>
    </message>
    <message>
        <source>&amp;About Lodex Geo</source>
        <translation>&amp;Tietoja Lodex Geosta</translation>
    </message>
    <message>
        <source>Sources</source>
        <translation>Lähteet</translation>
    </message>
    <message>
        <source>Single sample</source>
        <translation>Yksittäinen näyte</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Asetukset</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Ohje</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Valitse kaikki</translation>
    </message>
    <message>
        <source>Deselect all</source>
        <translation>Poista valinnat</translation>
    </message>
    <message>
        <source>Select rock methods</source>
        <translation>Valitse kivien menetelmät</translation>
    </message>
    <message>
        <source>Select mineral methods</source>
        <translation>Valitse mineraalien menetelmät</translation>
    </message>
    <message>
        <source>Save selection as default</source>
        <translation>Tallenna valinta oletukseksi</translation>
    </message>
    <message>
        <source>Load all</source>
        <translation>Lataa kaikki</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Poista</translation>
    </message>
    <message>
        <source>Sample database</source>
        <translation>Näytetietokanta</translation>
    </message>
    <message>
        <source>Mineral database</source>
        <translation>Mineraalitietokanta</translation>
    </message>
    <message>
        <source>Change...</source>
        <translation>Vaihda...</translation>
    </message>
    <message>
        <source>A first walk through the program</source>
        <translation>Ensimmäinen kierros ohjelmassa</translation>
    </message>
    <message>
        <source>Ask where an item has several columns to come from</source>
        <translation>Kysy, kun tieto voi tulla useasta sarakkeesta</translation>
    </message>
    <message>
        <source>Automated modal calculation (not available yet)</source>
        <translation>Automaattinen modaalilaskenta (ei vielä käytettävissä)</translation>
    </message>
    <message>
        <source>Calculate single samples with this method</source>
        <translation>Laske yksittäisiä näytteitä tällä menetelmällä</translation>
    </message>
    <message>
        <source>Calculate the current row of the data sheet by hand</source>
        <translation>Laske datataulukon nykyinen rivi käsin</translation>
    </message>
    <message>
        <source>Calculation groups</source>
        <translation>Laskentaryhmät</translation>
    </message>
    <message>
        <source>Choose another calculation group</source>
        <translation>Valitse toinen laskentaryhmä</translation>
    </message>
    <message>
        <source>Choose the database to save in</source>
        <translation>Valitse tietokanta, johon tallennetaan</translation>
    </message>
    <message>
        <source>Choose the database to save in; make tables and fields</source>
        <translation>Valitse tietokanta, johon tallennetaan; tee tauluja ja kenttiä</translation>
    </message>
    <message>
        <source>Choose which columns feed the calculations</source>
        <translation>Valitse, mistä sarakkeista laskennat saavat arvonsa</translation>
    </message>
    <message>
        <source>Close the data sheet that was worked with last</source>
        <translation>Sulje datataulukko, jota viimeksi käytettiin</translation>
    </message>
    <message>
        <source>Close this data sheet</source>
        <translation>Sulje tämä datataulukko</translation>
    </message>
    <message>
        <source>Columns that stay unidentified are saved in this table</source>
        <translation>Tunnistamatta jääneet sarakkeet tallennetaan tähän tauluun</translation>
    </message>
    <message>
        <source>Edit an ini file; changes take effect on the next start</source>
        <translation>Muokkaa ini-tiedostoa; muutokset tulevat voimaan seuraavassa käynnistyksessä</translation>
    </message>
    <message>
        <source>Edit the rules for what laboratories write</source>
        <translation>Muokkaa laboratorioiden merkintöjen sääntöjä</translation>
    </message>
    <message>
        <source>Find out what the columns of the selected sheets hold</source>
        <translation>Selvitä, mitä valittujen taulukoiden sarakkeissa on</translation>
    </message>
    <message>
        <source>Go back one stage</source>
        <translation>Palaa edelliseen vaiheeseen</translation>
    </message>
    <message>
        <source>Go on to choose samples and calculations</source>
        <translation>Jatka valitsemaan näytteet ja laskennat</translation>
    </message>
    <message>
        <source>Go on to find out what the columns of the open sheets hold</source>
        <translation>Jatka selvittämään, mitä avoimien taulukoiden sarakkeissa on</translation>
    </message>
    <message>
        <source>Go on to save sheets and results in a database</source>
        <translation>Jatka tallentamaan taulukot ja tulokset tietokantaan</translation>
    </message>
    <message>
        <source>Go on to what can be done with the saved data</source>
        <translation>Jatka siihen, mitä tallennetuilla tiedoilla voi tehdä</translation>
    </message>
    <message>
        <source>Go to a stage of the work</source>
        <translation>Siirry työn vaiheeseen</translation>
    </message>
    <message>
        <source>Identify the selected sheets, show the log and go on to saving</source>
        <translation>Tunnista valitut taulukot, näytä loki ja jatka tallennukseen</translation>
    </message>
    <message>
        <source>Leave columns alone that are identified already</source>
        <translation>Jätä jo tunnistetut sarakkeet rauhaan</translation>
    </message>
    <message>
        <source>Look samples up by their key instead of adding new records</source>
        <translation>Etsi näytteet avaimen mukaan sen sijaan, että lisätään uusia tietueita</translation>
    </message>
    <message>
        <source>Make a data sheet of the text on the clipboard and identify it</source>
        <translation>Tee leikepöydän tekstistä datataulukko ja tunnista se</translation>
    </message>
    <message>
        <source>Make an empty data sheet</source>
        <translation>Tee tyhjä datataulukko</translation>
    </message>
    <message>
        <source>Merge several databases into one</source>
        <translation>Yhdistä useita tietokantoja yhdeksi</translation>
    </message>
    <message>
        <source>Methods: the selected ones are calculated</source>
        <translation>Menetelmät: valitut lasketaan</translation>
    </message>
    <message>
        <source>Mineral catalogue (not available yet)</source>
        <translation>Mineraaliluettelo (ei vielä käytettävissä)</translation>
    </message>
    <message>
        <source>Mineral database in use</source>
        <translation>Käytössä oleva mineraalitietokanta</translation>
    </message>
    <message>
        <source>Mineral liberation (not available yet)</source>
        <translation>Mineraalien puhtaaksijauhatus (ei vielä käytettävissä)</translation>
    </message>
    <message>
        <source>Modal composition (not available yet)</source>
        <translation>Modaalikoostumus (ei vielä käytettävissä)</translation>
    </message>
    <message>
        <source>Open a database as the source of samples</source>
        <translation>Avaa tietokanta näytteiden lähteeksi</translation>
    </message>
    <message>
        <source>Open data files</source>
        <translation>Avaa datatiedostoja</translation>
    </message>
    <message>
        <source>Open data sheets: the selected ones are identified</source>
        <translation>Avoimet datataulukot: valitut tunnistetaan</translation>
    </message>
    <message>
        <source>Read all methods of the calculation group again</source>
        <translation>Lue laskentaryhmän kaikki menetelmät uudelleen</translation>
    </message>
    <message>
        <source>Rewrite what laboratories write by the rules of the thesaurus</source>
        <translation>Kirjoita laboratorioiden merkinnät uudelleen sanaston sääntöjen mukaan</translation>
    </message>
    <message>
        <source>Run the selected methods over the selected samples</source>
        <translation>Laske valitut näytteet valituilla menetelmillä</translation>
    </message>
    <message>
        <source>Sample database in use</source>
        <translation>Käytössä oleva näytetietokanta</translation>
    </message>
    <message>
        <source>Save the selected sheets in the database</source>
        <translation>Tallenna valitut taulukot tietokantaan</translation>
    </message>
    <message>
        <source>Save the sheets selected for saving</source>
        <translation>Tallenna tallennettaviksi valitut taulukot</translation>
    </message>
    <message>
        <source>Select the methods whose names begin with M</source>
        <translation>Valitse menetelmät, joiden nimi alkaa M:llä</translation>
    </message>
    <message>
        <source>Select the methods whose names begin with R</source>
        <translation>Valitse menetelmät, joiden nimi alkaa R:llä</translation>
    </message>
    <message>
        <source>Select these methods whenever the calculating stage is entered, until the program ends</source>
        <translation>Valitse nämä menetelmät aina laskentavaiheeseen tultaessa, kunnes ohjelma lopetetaan</translation>
    </message>
    <message>
        <source>Show the calculation result</source>
        <translation>Näytä laskennan tulos</translation>
    </message>
    <message>
        <source>Show the log</source>
        <translation>Näytä loki</translation>
    </message>
    <message>
        <source>Table for columns that stay unidentified</source>
        <translation>Taulu tunnistamatta jääneille sarakkeille</translation>
    </message>
    <message>
        <source>Tables and fields of the source database</source>
        <translation>Lähdetietokannan taulut ja kentät</translation>
    </message>
    <message>
        <source>The calculation group chosen here last</source>
        <translation>Tästä viimeksi valittu laskentaryhmä</translation>
    </message>
    <message>
        <source>The calculation group in use; click to choose another one</source>
        <translation>Käytössä oleva laskentaryhmä; toisen voi valita napsauttamalla</translation>
    </message>
    <message>
        <source>The database to save in</source>
        <translation>Tietokanta, johon tallennetaan</translation>
    </message>
    <message>
        <source>The name of the file is the method of its columns</source>
        <translation>Tiedoston nimi on sen sarakkeiden menetelmä</translation>
    </message>
    <message>
        <source>The selected ones are saved in the database</source>
        <translation>Valitut tallennetaan tietokantaan</translation>
    </message>
    <message>
        <source>Toggle to turn Below Detection Limit (BDL) conversion ON or OFF</source>
        <translation>Kytke määritysrajan alittavien arvojen (BDL) muunnos päälle tai pois</translation>
    </message>
    <message>
        <source>Use another sample database</source>
        <translation>Käytä toista näytetietokantaa</translation>
    </message>
    <message>
        <source>Values that are in the database already may be replaced</source>
        <translation>Tietokannassa jo olevat arvot saa korvata</translation>
    </message>
    <message>
        <source>View the destination database in the data viewer; this program ends</source>
        <translation>Katso kohdetietokantaa katseluohjelmassa; tämä ohjelma päättyy</translation>
    </message>
    <message>
        <source>Where samples come from: the selected ones are calculated</source>
        <translation>Mistä näytteet tulevat: valitut lasketaan</translation>
    </message>
    <message>
        <source>BDLC=ON</source>
        <translation>BDLC=ON</translation>
    </message>
    <message>
        <source>Report</source>
        <translation>Raportti</translation>
    </message>
    <message>
        <source>Re&amp;port</source>
        <translation>Ra&amp;portti</translation>
    </message>
    <message>
        <source>Show what the commands noticed, with the places</source>
        <translation>Näytä, mitä komennot huomasivat ja missä</translation>
    </message>
    <message>
        <source>What a command noticed; click to see the report</source>
        <translation>Mitä komento huomasi; napsauta nähdäksesi raportin</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Page %1 of %2</source>
        <translation>Sivu %1/%2</translation>
    </message>
    <message>
        <source>The first %1 of %2 pages</source>
        <translation>Ensimmäiset %1 sivua %2 sivusta</translation>
    </message>
</context>
<context>
    <name>frmAddField</name>
    <message>
        <source>Add Field</source>
        <translation>Lisää kenttä</translation>
    </message>
    <message>
        <source>Field name:</source>
        <translation>Kentän nimi:</translation>
    </message>
    <message>
        <source>Name of the new field</source>
        <translation>Uuden kentän nimi</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Tyyppi</translation>
    </message>
    <message>
        <source>CURRENCY</source>
        <translation>CURRENCY</translation>
    </message>
    <message>
        <source>Money: four decimals, exact</source>
        <translation>Raha: neljä desimaalia, tarkka</translation>
    </message>
    <message>
        <source>BYTE</source>
        <translation>BYTE</translation>
    </message>
    <message>
        <source>Whole number from 0 to 255</source>
        <translation>Kokonaisluku väliltä 0–255</translation>
    </message>
    <message>
        <source>MEMO</source>
        <translation>MEMO</translation>
    </message>
    <message>
        <source>Text of any length</source>
        <translation>Minkä pituinen teksti tahansa</translation>
    </message>
    <message>
        <source>SINGLE</source>
        <translation>SINGLE</translation>
    </message>
    <message>
        <source>Number with about 7 digits</source>
        <translation>Luku, noin 7 numeroa</translation>
    </message>
    <message>
        <source>DOUBLE</source>
        <translation>DOUBLE</translation>
    </message>
    <message>
        <source>Number with about 15 digits</source>
        <translation>Luku, noin 15 numeroa</translation>
    </message>
    <message>
        <source>LONG</source>
        <translation>LONG</translation>
    </message>
    <message>
        <source>Whole number up to 2,147,483,647</source>
        <translation>Kokonaisluku, enintään 2 147 483 647</translation>
    </message>
    <message>
        <source>INTEGER</source>
        <translation>INTEGER</translation>
    </message>
    <message>
        <source>Whole number up to 32,767</source>
        <translation>Kokonaisluku, enintään 32 767</translation>
    </message>
    <message>
        <source>TEXT</source>
        <translation>TEXT</translation>
    </message>
    <message>
        <source>Text of at most the given length</source>
        <translation>Enintään annetun pituinen teksti</translation>
    </message>
    <message>
        <source>Length:</source>
        <translation>Pituus:</translation>
    </message>
    <message>
        <source>Most characters of a TEXT, 1 to 255</source>
        <translation>TEXT-kentän suurin merkkimäärä, 1–255</translation>
    </message>
    <message>
        <source>Indexed</source>
        <translation>Indeksoitu</translation>
    </message>
    <message>
        <source>Make an index, which speeds up searching</source>
        <translation>Tee indeksi, joka nopeuttaa hakua</translation>
    </message>
    <message>
        <source>Unique </source>
        <translation>Yksikäsitteinen </translation>
    </message>
    <message>
        <source>Every value may occur once only</source>
        <translation>Kukin arvo saa esiintyä vain kerran</translation>
    </message>
    <message>
        <source>Primary field</source>
        <translation>Avainkenttä</translation>
    </message>
    <message>
        <source>The field that identifies the records of the table</source>
        <translation>Kenttä, josta taulun tietueet tunnetaan</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Lisää</translation>
    </message>
    <message>
        <source>Show the command and add the field on a yes</source>
        <translation>Näytä komento ja lisää kenttä, jos vastataan kyllä</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmCResult</name>
    <message>
        <source>Identified</source>
        <translation>Tunnistettu</translation>
    </message>
    <message>
        <source>Not Identied</source>
        <translation>Ei tunnistettu</translation>
    </message>
    <message>
        <source>Calculation Results</source>
        <translation>Laskennan tulokset</translation>
    </message>
    <message>
        <source>Find the structure of the table</source>
        <translation>Selvitä taulukon rakenne</translation>
    </message>
    <message>
        <source>F&amp;ile</source>
        <translation>T&amp;iedosto</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Muokkaa</translation>
    </message>
    <message>
        <source>Copy Row C&amp;ontent</source>
        <translation>Kopioi rivin s&amp;isältö</translation>
    </message>
    <message>
        <source>&amp;Structure</source>
        <translation>Ra&amp;kenne</translation>
    </message>
    <message>
        <source>Open data File</source>
        <translation>Avaa datatiedosto</translation>
    </message>
    <message>
        <source>Load a file into this window as it is</source>
        <translation>Lataa tiedosto tähän ikkunaan sellaisenaan</translation>
    </message>
    <message>
        <source>Save File</source>
        <translation>Tallenna tiedosto</translation>
    </message>
    <message>
        <source>Save this table in a file</source>
        <translation>Tallenna tämä taulukko tiedostoon</translation>
    </message>
    <message>
        <source>New (Clear)</source>
        <translation>Uusi (tyhjennä)</translation>
    </message>
    <message>
        <source>Empty the table and forget its structure</source>
        <translation>Tyhjennä taulukko ja unohda sen rakenne</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopioi</translation>
    </message>
    <message>
        <source>Copy the selected cells</source>
        <translation>Kopioi valitut solut</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Liitä</translation>
    </message>
    <message>
        <source>Paste the clipboard at the active cell</source>
        <translation>Liitä leikepöydän sisältö aktiiviseen soluun</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Valitse kaikki</translation>
    </message>
    <message>
        <source>Select all used cells</source>
        <translation>Valitse kaikki käytetyt solut</translation>
    </message>
    <message>
        <source>Copy All</source>
        <translation>Kopioi kaikki</translation>
    </message>
    <message>
        <source>Copy all cells together with the column headings</source>
        <translation>Kopioi kaikki solut sarakeotsikoineen</translation>
    </message>
    <message>
        <source>Insert rows</source>
        <translation>Lisää rivejä</translation>
    </message>
    <message>
        <source>Insert rows above the selected ones</source>
        <translation>Lisää rivejä valittujen yläpuolelle</translation>
    </message>
    <message>
        <source>Delete rows</source>
        <translation>Poista rivit</translation>
    </message>
    <message>
        <source>Delete the selected rows</source>
        <translation>Poista valitut rivit</translation>
    </message>
    <message>
        <source>Insert columns</source>
        <translation>Lisää sarakkeita</translation>
    </message>
    <message>
        <source>Insert columns before the selected ones</source>
        <translation>Lisää sarakkeita valittujen eteen</translation>
    </message>
    <message>
        <source>Delete columns</source>
        <translation>Poista sarakkeet</translation>
    </message>
    <message>
        <source>Delete the selected columns</source>
        <translation>Poista valitut sarakkeet</translation>
    </message>
    <message>
        <source>From Header</source>
        <translation>Riviltä Header</translation>
    </message>
    <message>
        <source>Copy the whole HEADER row into the active row</source>
        <translation>Kopioi koko HEADER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Element</source>
        <translation>Riviltä Element</translation>
    </message>
    <message>
        <source>Copy the whole ELEMENT row into the active row</source>
        <translation>Kopioi koko ELEMENT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Method</source>
        <translation>Riviltä Method</translation>
    </message>
    <message>
        <source>Copy the whole METHOD row into the active row</source>
        <translation>Kopioi koko METHOD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Unit</source>
        <translation>Riviltä Unit</translation>
    </message>
    <message>
        <source>Copy the whole UNIT row into the active row</source>
        <translation>Kopioi koko UNIT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Table</source>
        <translation>Riviltä Table</translation>
    </message>
    <message>
        <source>Copy the whole TABLE row into the active row</source>
        <translation>Kopioi koko TABLE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Field</source>
        <translation>Riviltä Field</translation>
    </message>
    <message>
        <source>Copy the whole FIELD row into the active row</source>
        <translation>Kopioi koko FIELD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Type</source>
        <translation>Riviltä Type</translation>
    </message>
    <message>
        <source>Copy the whole TYPE row into the active row</source>
        <translation>Kopioi koko TYPE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Length</source>
        <translation>Riviltä Length</translation>
    </message>
    <message>
        <source>Copy the whole LENGTH row into the active row</source>
        <translation>Kopioi koko LENGTH-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Digits</source>
        <translation>Riviltä Digits</translation>
    </message>
    <message>
        <source>Copy the whole DIGITS row into the active row</source>
        <translation>Kopioi koko DIGITS-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Indexed</source>
        <translation>Riviltä Indexed</translation>
    </message>
    <message>
        <source>Copy the whole INDEXED row into the active row</source>
        <translation>Kopioi koko INDEXED-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Multiplied</source>
        <translation>Riviltä Multiplied</translation>
    </message>
    <message>
        <source>Copy the whole MULTIPLIER row into the active row</source>
        <translation>Kopioi koko MULTIPLIER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Mineral</source>
        <translation>Sarakkeesta Mineral</translation>
    </message>
    <message>
        <source>&amp;Identify Structure</source>
        <translation>&amp;Tunnista rakenne</translation>
    </message>
    <message>
        <source>Parse</source>
        <translation>Jäsennä</translation>
    </message>
    <message>
        <source>Split unsplit rows of text into columns</source>
        <translation>Pilko jakamattomat tekstirivit sarakkeiksi</translation>
    </message>
    <message>
        <source>Freeze header rows</source>
        <translation>Kiinnitä otsikkorivit</translation>
    </message>
    <message>
        <source>Keep the system rows in sight</source>
        <translation>Pidä järjestelmärivit näkyvissä</translation>
    </message>
    <message>
        <source>Unfreeze header rows</source>
        <translation>Vapauta otsikkorivit</translation>
    </message>
    <message>
        <source>Let the system rows scroll away</source>
        <translation>Anna järjestelmärivien vieriä pois</translation>
    </message>
    <message>
        <source>Structure Panel</source>
        <translation>Rakennepaneeli</translation>
    </message>
    <message>
        <source>Show or hide the panel with the structure of the table</source>
        <translation>Näytä tai piilota taulukon rakenteen paneeli</translation>
    </message>
</context>
<context>
    <name>frmCombineDBS</name>
    <message>
        <source>Combine Databases</source>
        <translation>Yhdistä tietokantoja</translation>
    </message>
    <message>
        <source>Source databases:</source>
        <translation>Lähdetietokannat:</translation>
    </message>
    <message>
        <source>The databases to merge; the structure of the chosen one shows below</source>
        <translation>Yhdistettävät tietokannat; valitun rakenne näkyy alla</translation>
    </message>
    <message>
        <source>Add source</source>
        <translation>Lisää lähde</translation>
    </message>
    <message>
        <source>Add a database to the list of sources</source>
        <translation>Lisää tietokanta lähteiden luetteloon</translation>
    </message>
    <message>
        <source>Remove source</source>
        <translation>Poista lähde</translation>
    </message>
    <message>
        <source>Take the chosen database off the list; the file stays</source>
        <translation>Poista valittu tietokanta luettelosta; tiedosto säilyy</translation>
    </message>
    <message>
        <source>Destination database:</source>
        <translation>Kohdetietokanta:</translation>
    </message>
    <message>
        <source>The database that receives all tables and records</source>
        <translation>Tietokanta, johon kaikki taulut ja tietueet tulevat</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Avaa</translation>
    </message>
    <message>
        <source>Choose a database that exists</source>
        <translation>Valitse olemassa oleva tietokanta</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Uusi</translation>
    </message>
    <message>
        <source>Make a new database</source>
        <translation>Tee uusi tietokanta</translation>
    </message>
    <message>
        <source>Tables in selected database:</source>
        <translation>Valitun tietokannan taulut:</translation>
    </message>
    <message>
        <source>Fields in selected table:</source>
        <translation>Valitun taulun kentät:</translation>
    </message>
    <message>
        <source>Properties of selected field:</source>
        <translation>Valitun kentän ominaisuudet:</translation>
    </message>
    <message>
        <source>Add table</source>
        <translation>Lisää taulu</translation>
    </message>
    <message>
        <source>Make a new table in the chosen source</source>
        <translation>Tee uusi taulu valittuun lähteeseen</translation>
    </message>
    <message>
        <source>Remove table</source>
        <translation>Poista taulu</translation>
    </message>
    <message>
        <source>Delete the selected table with its records</source>
        <translation>Poista valittu taulu tietueineen</translation>
    </message>
    <message>
        <source>Add field</source>
        <translation>Lisää kenttä</translation>
    </message>
    <message>
        <source>Add a field to the selected table</source>
        <translation>Lisää kenttä valittuun tauluun</translation>
    </message>
    <message>
        <source>Remove field</source>
        <translation>Poista kenttä</translation>
    </message>
    <message>
        <source>Delete the selected field with its values</source>
        <translation>Poista valittu kenttä arvoineen</translation>
    </message>
    <message>
        <source>Combine (=Save) !</source>
        <translation>Yhdistä (=tallenna) !</translation>
    </message>
    <message>
        <source>Merge all sources into the destination</source>
        <translation>Yhdistä kaikki lähteet kohteeseen</translation>
    </message>
</context>
<context>
    <name>frmConnect</name>
    <message>
        <source>Open Database</source>
        <translation>Avaa tietokanta</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Avaa</translation>
    </message>
    <message>
        <source>Database type:</source>
        <translation>Tietokannan tyyppi:</translation>
    </message>
    <message>
        <source>Kind of database; the list of files shows its files</source>
        <translation>Tietokannan laji; tiedostoluettelo näyttää sen tiedostot</translation>
    </message>
    <message>
        <source>Drive:</source>
        <translation>Asema:</translation>
    </message>
    <message>
        <source>Where to look: the user folder, the program folder, the home folder or the whole disk</source>
        <translation>Mistä haetaan: käyttäjän kansiosta, ohjelman kansiosta, kotikansiosta vai koko levyltä</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Kansio:</translation>
    </message>
    <message>
        <source>The folder on show; a typed folder is shown after Enter</source>
        <translation>Näytettävä kansio; kirjoitettu kansio näytetään, kun painetaan Enter</translation>
    </message>
    <message>
        <source>Folders:</source>
        <translation>Kansiot:</translation>
    </message>
    <message>
        <source>Files:</source>
        <translation>Tiedostot:</translation>
    </message>
    <message>
        <source>A double click opens the folder</source>
        <translation>Kaksoisnapsautus avaa kansion</translation>
    </message>
    <message>
        <source>A double click opens the database</source>
        <translation>Kaksoisnapsautus avaa tietokannan</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>Tiedoston nimi:</translation>
    </message>
    <message>
        <source>The file to open in the folder on show</source>
        <translation>Näytettävästä kansiosta avattava tiedosto</translation>
    </message>
    <message>
        <source>Pattern:</source>
        <translation>Nimimalli:</translation>
    </message>
    <message>
        <source>Files of this kind are listed</source>
        <translation>Luettelossa ovat tämänlajiset tiedostot</translation>
    </message>
    <message>
        <source>Map database</source>
        <translation>Kartoita tietokanta</translation>
    </message>
    <message>
        <source>Read the structure of the database afresh and store it; otherwise the stored one is taken</source>
        <translation>Lue tietokannan rakenne uudelleen ja tallenna se; muuten käytetään tallennettua</translation>
    </message>
    <message>
        <source>Browse...</source>
        <translation>Selaa...</translation>
    </message>
    <message>
        <source>Choose the database in a file dialogue</source>
        <translation>Valitse tietokanta tiedostoikkunassa</translation>
    </message>
    <message>
        <source>Open the file of the box above</source>
        <translation>Avaa yllä olevan ruudun tiedosto</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>Last</source>
        <translation>Viimeiset</translation>
    </message>
    <message>
        <source>Last databases:</source>
        <translation>Viimeksi avatut tietokannat:</translation>
    </message>
    <message>
        <source>The ten databases opened last; a double click opens one</source>
        <translation>Kymmenen viimeksi avattua tietokantaa; kaksoisnapsautus avaa</translation>
    </message>
    <message>
        <source>Open the selected database</source>
        <translation>Avaa valittu tietokanta</translation>
    </message>
    <message>
        <source>In use</source>
        <translation>Käytössä</translation>
    </message>
    <message>
        <source>Databases in use:</source>
        <translation>Käytössä olevat tietokannat:</translation>
    </message>
    <message>
        <source>The databases of this session</source>
        <translation>Tämän istunnon tietokannat</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Sulje</translation>
    </message>
</context>
<context>
    <name>frmDB</name>
    <message>
        <source>Source database</source>
        <translation>Lähdetietokanta</translation>
    </message>
    <message>
        <source>Database:</source>
        <translation>Tietokanta:</translation>
    </message>
    <message>
        <source>The database that samples come from</source>
        <translation>Tietokanta, josta näytteet tulevat</translation>
    </message>
    <message>
        <source>Open...</source>
        <translation>Avaa...</translation>
    </message>
    <message>
        <source>Choose another source database</source>
        <translation>Valitse toinen lähdetietokanta</translation>
    </message>
    <message>
        <source>Tables:</source>
        <translation>Taulut:</translation>
    </message>
    <message>
        <source>Fields:</source>
        <translation>Kentät:</translation>
    </message>
    <message>
        <source>Properties of selected field:</source>
        <translation>Valitun kentän ominaisuudet:</translation>
    </message>
    <message>
        <source>Tables of the database</source>
        <translation>Tietokannan taulut</translation>
    </message>
    <message>
        <source>Fields of the selected table</source>
        <translation>Valitun taulun kentät</translation>
    </message>
    <message>
        <source>What the database tells of the selected field</source>
        <translation>Mitä tietokanta kertoo valitusta kentästä</translation>
    </message>
    <message>
        <source>Key table:</source>
        <translation>Avaintaulu:</translation>
    </message>
    <message>
        <source>The table whose key identifies the samples</source>
        <translation>Taulu, jonka avaimesta näytteet tunnetaan</translation>
    </message>
    <message>
        <source>Define key table</source>
        <translation>Määritä avaintaulu</translation>
    </message>
    <message>
        <source>Choose the key table from the list of tables</source>
        <translation>Valitse avaintaulu taulujen luettelosta</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Suodatin</translation>
    </message>
    <message>
        <source>Take only the records that a stored filter lets through</source>
        <translation>Ota vain tietueet, jotka tallennettu suodatin päästää läpi</translation>
    </message>
    <message>
        <source>The stored filters of the database</source>
        <translation>Tietokannan tallennetut suodattimet</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmDDB</name>
    <message>
        <source>Destination database</source>
        <translation>Kohdetietokanta</translation>
    </message>
    <message>
        <source>Database:</source>
        <translation>Tietokanta:</translation>
    </message>
    <message>
        <source>The database that results are saved into</source>
        <translation>Tietokanta, johon tulokset tallennetaan</translation>
    </message>
    <message>
        <source>Open database...</source>
        <translation>Avaa tietokanta...</translation>
    </message>
    <message>
        <source>Save into a database that exists</source>
        <translation>Tallenna olemassa olevaan tietokantaan</translation>
    </message>
    <message>
        <source>New database...</source>
        <translation>Uusi tietokanta...</translation>
    </message>
    <message>
        <source>Make a new database and save into it</source>
        <translation>Tee uusi tietokanta ja tallenna siihen</translation>
    </message>
    <message>
        <source>Same as source</source>
        <translation>Sama kuin lähde</translation>
    </message>
    <message>
        <source>Save into the database that the samples come from</source>
        <translation>Tallenna tietokantaan, josta näytteet tulevat</translation>
    </message>
    <message>
        <source>Tables:</source>
        <translation>Taulut:</translation>
    </message>
    <message>
        <source>Fields:</source>
        <translation>Kentät:</translation>
    </message>
    <message>
        <source>Properties of selected field:</source>
        <translation>Valitun kentän ominaisuudet:</translation>
    </message>
    <message>
        <source>Tables of the database</source>
        <translation>Tietokannan taulut</translation>
    </message>
    <message>
        <source>Fields of the selected table</source>
        <translation>Valitun taulun kentät</translation>
    </message>
    <message>
        <source>What the database tells of the selected field</source>
        <translation>Mitä tietokanta kertoo valitusta kentästä</translation>
    </message>
    <message>
        <source>Create table</source>
        <translation>Luo taulu</translation>
    </message>
    <message>
        <source>Make a new table in the database</source>
        <translation>Tee tietokantaan uusi taulu</translation>
    </message>
    <message>
        <source>Create field</source>
        <translation>Luo kenttä</translation>
    </message>
    <message>
        <source>Add a field to the selected table</source>
        <translation>Lisää kenttä valittuun tauluun</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>frmDataIN</name>
    <message>
        <source>Identified</source>
        <translation>Tunnistettu</translation>
    </message>
    <message>
        <source>Not Identied</source>
        <translation>Ei tunnistettu</translation>
    </message>
    <message>
        <source>Data</source>
        <translation>Data</translation>
    </message>
    <message>
        <source>Find the structure of the table</source>
        <translation>Selvitä taulukon rakenne</translation>
    </message>
    <message>
        <source>F&amp;ile</source>
        <translation>T&amp;iedosto</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Muokkaa</translation>
    </message>
    <message>
        <source>Copy Row C&amp;ontent</source>
        <translation>Kopioi rivin s&amp;isältö</translation>
    </message>
    <message>
        <source>&amp;Structure</source>
        <translation>Ra&amp;kenne</translation>
    </message>
    <message>
        <source>Open data File</source>
        <translation>Avaa datatiedosto</translation>
    </message>
    <message>
        <source>Load a file into this window as it is</source>
        <translation>Lataa tiedosto tähän ikkunaan sellaisenaan</translation>
    </message>
    <message>
        <source>Save File</source>
        <translation>Tallenna tiedosto</translation>
    </message>
    <message>
        <source>Save this table in a file</source>
        <translation>Tallenna tämä taulukko tiedostoon</translation>
    </message>
    <message>
        <source>New (Clear)</source>
        <translation>Uusi (tyhjennä)</translation>
    </message>
    <message>
        <source>Empty the table and forget its structure</source>
        <translation>Tyhjennä taulukko ja unohda sen rakenne</translation>
    </message>
    <message>
        <source>Rename Window...</source>
        <translation>Nimeä ikkuna uudelleen...</translation>
    </message>
    <message>
        <source>Give this window another name</source>
        <translation>Anna tälle ikkunalle toinen nimi</translation>
    </message>
    <message>
        <source>Load all rows</source>
        <translation>Lataa kaikki rivit</translation>
    </message>
    <message>
        <source>Fill the sheet with every row of a long text file</source>
        <translation>Täytä taulukko pitkän tekstitiedoston kaikilla riveillä</translation>
    </message>
    <message>
        <source>Always load all rows</source>
        <translation>Lataa aina kaikki rivit</translation>
    </message>
    <message>
        <source>Load every row of long text files without asking</source>
        <translation>Lataa pitkien tekstitiedostojen kaikki rivit kysymättä</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopioi</translation>
    </message>
    <message>
        <source>Copy the selected cells</source>
        <translation>Kopioi valitut solut</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Liitä</translation>
    </message>
    <message>
        <source>Paste the clipboard at the active cell</source>
        <translation>Liitä leikepöydän sisältö aktiiviseen soluun</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Valitse kaikki</translation>
    </message>
    <message>
        <source>Select all used cells</source>
        <translation>Valitse kaikki käytetyt solut</translation>
    </message>
    <message>
        <source>Copy All</source>
        <translation>Kopioi kaikki</translation>
    </message>
    <message>
        <source>Copy all cells together with the column headings</source>
        <translation>Kopioi kaikki solut sarakeotsikoineen</translation>
    </message>
    <message>
        <source>Insert rows</source>
        <translation>Lisää rivejä</translation>
    </message>
    <message>
        <source>Insert rows above the selected ones</source>
        <translation>Lisää rivejä valittujen yläpuolelle</translation>
    </message>
    <message>
        <source>Delete rows</source>
        <translation>Poista rivit</translation>
    </message>
    <message>
        <source>Delete the selected rows</source>
        <translation>Poista valitut rivit</translation>
    </message>
    <message>
        <source>Insert columns</source>
        <translation>Lisää sarakkeita</translation>
    </message>
    <message>
        <source>Insert columns before the selected ones</source>
        <translation>Lisää sarakkeita valittujen eteen</translation>
    </message>
    <message>
        <source>Delete columns</source>
        <translation>Poista sarakkeet</translation>
    </message>
    <message>
        <source>Delete the selected columns</source>
        <translation>Poista valitut sarakkeet</translation>
    </message>
    <message>
        <source>From Header</source>
        <translation>Riviltä Header</translation>
    </message>
    <message>
        <source>Copy the whole HEADER row into the active row</source>
        <translation>Kopioi koko HEADER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Element</source>
        <translation>Riviltä Element</translation>
    </message>
    <message>
        <source>Copy the whole ELEMENT row into the active row</source>
        <translation>Kopioi koko ELEMENT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Method</source>
        <translation>Riviltä Method</translation>
    </message>
    <message>
        <source>Copy the whole METHOD row into the active row</source>
        <translation>Kopioi koko METHOD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Unit</source>
        <translation>Riviltä Unit</translation>
    </message>
    <message>
        <source>Copy the whole UNIT row into the active row</source>
        <translation>Kopioi koko UNIT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Table</source>
        <translation>Riviltä Table</translation>
    </message>
    <message>
        <source>Copy the whole TABLE row into the active row</source>
        <translation>Kopioi koko TABLE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Field</source>
        <translation>Riviltä Field</translation>
    </message>
    <message>
        <source>Copy the whole FIELD row into the active row</source>
        <translation>Kopioi koko FIELD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Type</source>
        <translation>Riviltä Type</translation>
    </message>
    <message>
        <source>Copy the whole TYPE row into the active row</source>
        <translation>Kopioi koko TYPE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Length</source>
        <translation>Riviltä Length</translation>
    </message>
    <message>
        <source>Copy the whole LENGTH row into the active row</source>
        <translation>Kopioi koko LENGTH-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Digits</source>
        <translation>Riviltä Digits</translation>
    </message>
    <message>
        <source>Copy the whole DIGITS row into the active row</source>
        <translation>Kopioi koko DIGITS-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Indexed</source>
        <translation>Riviltä Indexed</translation>
    </message>
    <message>
        <source>Copy the whole INDEXED row into the active row</source>
        <translation>Kopioi koko INDEXED-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Multiplied</source>
        <translation>Riviltä Multiplied</translation>
    </message>
    <message>
        <source>Copy the whole MULTIPLIER row into the active row</source>
        <translation>Kopioi koko MULTIPLIER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Mineral</source>
        <translation>Sarakkeesta Mineral</translation>
    </message>
    <message>
        <source>&amp;Identify Structure</source>
        <translation>&amp;Tunnista rakenne</translation>
    </message>
    <message>
        <source>Parse</source>
        <translation>Jäsennä</translation>
    </message>
    <message>
        <source>Split unsplit rows of text into columns</source>
        <translation>Pilko jakamattomat tekstirivit sarakkeiksi</translation>
    </message>
    <message>
        <source>Freeze header rows</source>
        <translation>Kiinnitä otsikkorivit</translation>
    </message>
    <message>
        <source>Keep the system rows in sight</source>
        <translation>Pidä järjestelmärivit näkyvissä</translation>
    </message>
    <message>
        <source>Unfreeze header rows</source>
        <translation>Vapauta otsikkorivit</translation>
    </message>
    <message>
        <source>Let the system rows scroll away</source>
        <translation>Anna järjestelmärivien vieriä pois</translation>
    </message>
    <message>
        <source>Structure Panel</source>
        <translation>Rakennepaneeli</translation>
    </message>
    <message>
        <source>Show or hide the panel with the structure of the table</source>
        <translation>Näytä tai piilota taulukon rakenteen paneeli</translation>
    </message>
</context>
<context>
    <name>frmDefineItem</name>
    <message>
        <source>Define source</source>
        <translation>Määritä lähde</translation>
    </message>
    <message>
        <source>Sheet:</source>
        <translation>Taulukko:</translation>
    </message>
    <message>
        <source>The data sheet that the values come from</source>
        <translation>Datataulukko, josta arvot tulevat</translation>
    </message>
    <message>
        <source>Column:</source>
        <translation>Sarake:</translation>
    </message>
    <message>
        <source>The column of the sheet, by its number and heading</source>
        <translation>Taulukon sarake numeron ja otsikon mukaan</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmExcelCalc</name>
    <message>
        <source>Identified</source>
        <translation>Tunnistettu</translation>
    </message>
    <message>
        <source>Not Identied</source>
        <translation>Ei tunnistettu</translation>
    </message>
    <message>
        <source>Single Sample Calculation</source>
        <translation>Yksittäisen näytteen laskenta</translation>
    </message>
    <message>
        <source>Method:</source>
        <translation>Menetelmä:</translation>
    </message>
    <message>
        <source>The method to calculate with</source>
        <translation>Menetelmä, jolla lasketaan</translation>
    </message>
    <message>
        <source>Calculate</source>
        <translation>Laske</translation>
    </message>
    <message>
        <source>Calculate all sample columns with this method</source>
        <translation>Laske kaikki näytesarakkeet tällä menetelmällä</translation>
    </message>
    <message>
        <source>Sources...</source>
        <translation>Lähteet...</translation>
    </message>
    <message>
        <source>Show and choose which rows feed which element</source>
        <translation>Näytä ja valitse, miltä riveiltä mikin alkuaine saadaan</translation>
    </message>
    <message>
        <source>Find the structure of the table</source>
        <translation>Selvitä taulukon rakenne</translation>
    </message>
    <message>
        <source>The methods of the calculation group; a double click calculates one</source>
        <translation>Laskentaryhmän menetelmät; kaksoisnapsautus laskee</translation>
    </message>
    <message>
        <source>F&amp;ile</source>
        <translation>T&amp;iedosto</translation>
    </message>
    <message>
        <source>E&amp;xamples</source>
        <translation>&amp;Esimerkit</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Muokkaa</translation>
    </message>
    <message>
        <source>Copy Row C&amp;ontent</source>
        <translation>Kopioi rivin s&amp;isältö</translation>
    </message>
    <message>
        <source>&amp;Structure</source>
        <translation>Ra&amp;kenne</translation>
    </message>
    <message>
        <source>Ca&amp;lculate</source>
        <translation>&amp;Laske</translation>
    </message>
    <message>
        <source>Open data File</source>
        <translation>Avaa datatiedosto</translation>
    </message>
    <message>
        <source>Load a file into this window as it is</source>
        <translation>Lataa tiedosto tähän ikkunaan sellaisenaan</translation>
    </message>
    <message>
        <source>Save File</source>
        <translation>Tallenna tiedosto</translation>
    </message>
    <message>
        <source>Save this table in a file</source>
        <translation>Tallenna tämä taulukko tiedostoon</translation>
    </message>
    <message>
        <source>New (Clear)</source>
        <translation>Uusi (tyhjennä)</translation>
    </message>
    <message>
        <source>Empty the table and forget its structure</source>
        <translation>Tyhjennä taulukko ja unohda sen rakenne</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopioi</translation>
    </message>
    <message>
        <source>Copy the selected cells</source>
        <translation>Kopioi valitut solut</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Liitä</translation>
    </message>
    <message>
        <source>Paste the clipboard at the active cell</source>
        <translation>Liitä leikepöydän sisältö aktiiviseen soluun</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Valitse kaikki</translation>
    </message>
    <message>
        <source>Select all used cells</source>
        <translation>Valitse kaikki käytetyt solut</translation>
    </message>
    <message>
        <source>Copy All</source>
        <translation>Kopioi kaikki</translation>
    </message>
    <message>
        <source>Copy all cells together with the column headings</source>
        <translation>Kopioi kaikki solut sarakeotsikoineen</translation>
    </message>
    <message>
        <source>Insert rows</source>
        <translation>Lisää rivejä</translation>
    </message>
    <message>
        <source>Insert rows above the selected ones</source>
        <translation>Lisää rivejä valittujen yläpuolelle</translation>
    </message>
    <message>
        <source>Delete rows</source>
        <translation>Poista rivit</translation>
    </message>
    <message>
        <source>Delete the selected rows</source>
        <translation>Poista valitut rivit</translation>
    </message>
    <message>
        <source>Insert columns</source>
        <translation>Lisää sarakkeita</translation>
    </message>
    <message>
        <source>Insert columns before the selected ones</source>
        <translation>Lisää sarakkeita valittujen eteen</translation>
    </message>
    <message>
        <source>Delete columns</source>
        <translation>Poista sarakkeet</translation>
    </message>
    <message>
        <source>Delete the selected columns</source>
        <translation>Poista valitut sarakkeet</translation>
    </message>
    <message>
        <source>From Header</source>
        <translation>Riviltä Header</translation>
    </message>
    <message>
        <source>Copy the whole HEADER row into the active row</source>
        <translation>Kopioi koko HEADER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Element</source>
        <translation>Riviltä Element</translation>
    </message>
    <message>
        <source>Copy the whole ELEMENT row into the active row</source>
        <translation>Kopioi koko ELEMENT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Method</source>
        <translation>Riviltä Method</translation>
    </message>
    <message>
        <source>Copy the whole METHOD row into the active row</source>
        <translation>Kopioi koko METHOD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Unit</source>
        <translation>Riviltä Unit</translation>
    </message>
    <message>
        <source>Copy the whole UNIT row into the active row</source>
        <translation>Kopioi koko UNIT-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Table</source>
        <translation>Riviltä Table</translation>
    </message>
    <message>
        <source>Copy the whole TABLE row into the active row</source>
        <translation>Kopioi koko TABLE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Field</source>
        <translation>Riviltä Field</translation>
    </message>
    <message>
        <source>Copy the whole FIELD row into the active row</source>
        <translation>Kopioi koko FIELD-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Type</source>
        <translation>Riviltä Type</translation>
    </message>
    <message>
        <source>Copy the whole TYPE row into the active row</source>
        <translation>Kopioi koko TYPE-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Length</source>
        <translation>Riviltä Length</translation>
    </message>
    <message>
        <source>Copy the whole LENGTH row into the active row</source>
        <translation>Kopioi koko LENGTH-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Digits</source>
        <translation>Riviltä Digits</translation>
    </message>
    <message>
        <source>Copy the whole DIGITS row into the active row</source>
        <translation>Kopioi koko DIGITS-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Indexed</source>
        <translation>Riviltä Indexed</translation>
    </message>
    <message>
        <source>Copy the whole INDEXED row into the active row</source>
        <translation>Kopioi koko INDEXED-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Multiplied</source>
        <translation>Riviltä Multiplied</translation>
    </message>
    <message>
        <source>Copy the whole MULTIPLIER row into the active row</source>
        <translation>Kopioi koko MULTIPLIER-rivi aktiiviselle riville</translation>
    </message>
    <message>
        <source>From Mineral</source>
        <translation>Sarakkeesta Mineral</translation>
    </message>
    <message>
        <source>&amp;Identify Structure</source>
        <translation>&amp;Tunnista rakenne</translation>
    </message>
    <message>
        <source>Parse</source>
        <translation>Jäsennä</translation>
    </message>
    <message>
        <source>Split unsplit rows of text into columns</source>
        <translation>Pilko jakamattomat tekstirivit sarakkeiksi</translation>
    </message>
    <message>
        <source>Freeze header rows</source>
        <translation>Kiinnitä otsikkorivit</translation>
    </message>
    <message>
        <source>Keep the system rows in sight</source>
        <translation>Pidä järjestelmärivit näkyvissä</translation>
    </message>
    <message>
        <source>Unfreeze header rows</source>
        <translation>Vapauta otsikkorivit</translation>
    </message>
    <message>
        <source>Let the system rows scroll away</source>
        <translation>Anna järjestelmärivien vieriä pois</translation>
    </message>
    <message>
        <source>Structure Panel</source>
        <translation>Rakennepaneeli</translation>
    </message>
    <message>
        <source>Show or hide the panel with the structure of the table</source>
        <translation>Näytä tai piilota taulukon rakenteen paneeli</translation>
    </message>
    <message>
        <source>CALCULATE</source>
        <translation>LASKE</translation>
    </message>
    <message>
        <source>Show or hide the list of methods</source>
        <translation>Näytä tai piilota menetelmien luettelo</translation>
    </message>
    <message>
        <source>C-Group...</source>
        <translation>Laskentaryhmä...</translation>
    </message>
    <message>
        <source>Choose another calculation group</source>
        <translation>Valitse toinen laskentaryhmä</translation>
    </message>
    <message>
        <source>Examples 1</source>
        <translation>Esimerkit 1</translation>
    </message>
    <message>
        <source>Load this example in place of the input</source>
        <translation>Lataa tämä esimerkki syötteen tilalle</translation>
    </message>
    <message>
        <source>Examples 2</source>
        <translation>Esimerkit 2</translation>
    </message>
    <message>
        <source>Examples 3</source>
        <translation>Esimerkit 3</translation>
    </message>
    <message>
        <source>Examples 4</source>
        <translation>Esimerkit 4</translation>
    </message>
    <message>
        <source>Examples 5</source>
        <translation>Esimerkit 5</translation>
    </message>
    <message>
        <source>Examples 6</source>
        <translation>Esimerkit 6</translation>
    </message>
    <message>
        <source>Examples 7</source>
        <translation>Esimerkit 7</translation>
    </message>
    <message>
        <source>Examples 8</source>
        <translation>Esimerkit 8</translation>
    </message>
    <message>
        <source>Examples 9</source>
        <translation>Esimerkit 9</translation>
    </message>
    <message>
        <source>Examples 10</source>
        <translation>Esimerkit 10</translation>
    </message>
</context>
<context>
    <name>frmLoad</name>
    <message>
        <source>Lodex Geo</source>
        <translation>Lodex Geo</translation>
    </message>
    <message>
        <source>Chemical assays into mineralogy</source>
        <translation>Kemiallisista analyyseistä mineralogiaksi</translation>
    </message>
</context>
<context>
    <name>frmLog</name>
    <message>
        <source>Log</source>
        <translation>Loki</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Virheet</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Tallenna...</translation>
    </message>
    <message>
        <source>Save this pane as text</source>
        <translation>Tallenna tämä sivu tekstinä</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Tyhjennä</translation>
    </message>
    <message>
        <source>Empty this pane</source>
        <translation>Tyhjennä tämä sivu</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Sulje</translation>
    </message>
    <message>
        <source>Close the window; the texts stay</source>
        <translation>Sulje ikkuna; tekstit säilyvät</translation>
    </message>
    <message>
        <source>&amp;Log</source>
        <translation>L&amp;oki</translation>
    </message>
    <message>
        <source>&amp;Save...</source>
        <translation>&amp;Tallenna...</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>T&amp;yhjennä</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>K&amp;opioi</translation>
    </message>
    <message>
        <source>Copy the text of this pane</source>
        <translation>Kopioi tämän sivun teksti</translation>
    </message>
    <message>
        <source>&amp;Hide</source>
        <translation>&amp;Piilota</translation>
    </message>
    <message>
        <source>Hide the window; the texts stay</source>
        <translation>Piilota ikkuna; tekstit säilyvät</translation>
    </message>
    <message>
        <source>Cl&amp;ose</source>
        <translation>&amp;Sulje</translation>
    </message>
</context>
<context>
    <name>frmReport</name>
    <message>
        <source>Report</source>
        <translation>Raportti</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Huomautukset</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopioi</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Tallenna...</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Tyhjennä</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Sulje</translation>
    </message>
    <message>
        <source>Copy the report as text</source>
        <translation>Kopioi raportti tekstinä</translation>
    </message>
    <message>
        <source>Empty the report; the log keeps everything</source>
        <translation>Tyhjennä raportti; loki säilyttää kaiken</translation>
    </message>
    <message>
        <source>List notes as well: how something was understood</source>
        <translation>Luettele myös huomautukset: miten jokin tulkittiin</translation>
    </message>
    <message>
        <source>Save the report as a text file</source>
        <translation>Tallenna raportti tekstitiedostona</translation>
    </message>
    <message>
        <source>Nothing was noticed so far</source>
        <translation>Toistaiseksi ei ole huomattu mitään</translation>
    </message>
    <message>
        <source>Click a line to go to its place</source>
        <translation>Napsauta riviä siirtyäksesi sen kohtaan</translation>
    </message>
</context>
<context>
    <name>frmSelectElements</name>
    <message>
        <source>Select</source>
        <translation>Valitse</translation>
    </message>
    <message>
        <source>Checked entries are used, in this order:</source>
        <translation>Merkittyjä käytetään tässä järjestyksessä:</translation>
    </message>
    <message>
        <source>Space checks or unchecks an entry</source>
        <translation>Välilyönti merkitsee tai poistaa merkin</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Ylös</translation>
    </message>
    <message>
        <source>Prefer the entry to the one above</source>
        <translation>Aseta etusijalle edelliseen nähden</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Alas</translation>
    </message>
    <message>
        <source>Prefer the one below to the entry</source>
        <translation>Aseta seuraava etusijalle</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmSelectFromList</name>
    <message>
        <source>Select</source>
        <translation>Valitse</translation>
    </message>
    <message>
        <source>Choose an item; a double click takes it at once</source>
        <translation>Valitse kohta; kaksoisnapsautus ottaa sen heti</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmSources</name>
    <message>
        <source>Lodex Geo - Calculation Options</source>
        <translation>Lodex Geo - Laskennan asetukset</translation>
    </message>
    <message>
        <source>Sources</source>
        <translation>Lähteet</translation>
    </message>
    <message>
        <source>Calculation:</source>
        <translation>Laskenta:</translation>
    </message>
    <message>
        <source>All calculations together, or one that gets sources of its own</source>
        <translation>Kaikki laskennat yhdessä, tai yksi, joka saa omat lähteensä</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Palauta</translation>
    </message>
    <message>
        <source>Find the sources in the open sheets again; changes are lost</source>
        <translation>Etsi lähteet avoimista taulukoista uudelleen; muutokset häviävät</translation>
    </message>
    <message>
        <source>Show List...</source>
        <translation>Näytä luettelo...</translation>
    </message>
    <message>
        <source>Show the sources of all elements as text</source>
        <translation>Näytä kaikkien alkuaineiden lähteet tekstinä</translation>
    </message>
    <message>
        <source>Ask when ambiguous</source>
        <translation>Kysy, kun on monta vaihtoehtoa</translation>
    </message>
    <message>
        <source>Ask which column to take when an item is found in several</source>
        <translation>Kysy, mikä sarake otetaan, kun sopivia on useita</translation>
    </message>
    <message>
        <source>Elements with sources are marked; click one to see them</source>
        <translation>Alkuaineet, joilla on lähteitä, on merkitty; lähteet näkee napsauttamalla</translation>
    </message>
    <message>
        <source>Uncheck element to not use it</source>
        <translation>Poista merkki, jos alkuainetta ei käytetä</translation>
    </message>
    <message>
        <source>The sources of the selected element; the first with a value is used</source>
        <translation>Valitun alkuaineen lähteet; ensimmäistä, jolla on arvo, käytetään</translation>
    </message>
    <message>
        <source>Add..</source>
        <translation>Lisää..</translation>
    </message>
    <message>
        <source>Add a source: a sheet and its column</source>
        <translation>Lisää lähde: taulukko ja sen sarake</translation>
    </message>
    <message>
        <source>Edit..</source>
        <translation>Muokkaa..</translation>
    </message>
    <message>
        <source>Choose and order the sources of the element</source>
        <translation>Valitse ja järjestä alkuaineen lähteet</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Poista</translation>
    </message>
    <message>
        <source>Remove the selected source</source>
        <translation>Poista valittu lähde</translation>
    </message>
    <message>
        <source>Methods...</source>
        <translation>Menetelmät...</translation>
    </message>
    <message>
        <source>Order the sources by analytical method</source>
        <translation>Järjestä lähteet analyysimenetelmän mukaan</translation>
    </message>
    <message>
        <source>The sources of all elements</source>
        <translation>Kaikkien alkuaineiden lähteet</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Piilota</translation>
    </message>
    <message>
        <source>Close this list</source>
        <translation>Sulje tämä luettelo</translation>
    </message>
    <message>
        <source>Methods</source>
        <translation>Menetelmät</translation>
    </message>
    <message>
        <source>The calculation group in use</source>
        <translation>Käytössä oleva laskentaryhmä</translation>
    </message>
    <message>
        <source>A click loads the workbook of the method</source>
        <translation>Napsautus lataa menetelmän työkirjan</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Käytä</translation>
    </message>
    <message>
        <source>Use the workbook as it stands here, without saving it</source>
        <translation>Käytä työkirjaa tällaisenaan tallentamatta sitä</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Tallenna</translation>
    </message>
    <message>
        <source>Apply, and write the workbook to its file</source>
        <translation>Käytä ja tallenna työkirja tiedostoonsa</translation>
    </message>
    <message>
        <source>Save As ...</source>
        <translation>Tallenna nimellä ...</translation>
    </message>
    <message>
        <source>Apply, and write the workbook under a new name</source>
        <translation>Käytä ja tallenna työkirja uudella nimellä</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmSplitDialog</name>
    <message>
        <source>Original:</source>
        <translation>Alkuperäinen:</translation>
    </message>
    <message>
        <source>Split Data</source>
        <translation>Pilko data</translation>
    </message>
    <message>
        <source>Column Separator is:</source>
        <translation>Sarakkeiden erotin:</translation>
    </message>
    <message>
        <source>One or more characters between the columns</source>
        <translation>Yksi tai useampi merkki sarakkeiden välissä</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Sarkain</translation>
    </message>
    <message>
        <source>The columns are separated by tab characters</source>
        <translation>Sarakkeet on erotettu sarkaimilla</translation>
    </message>
    <message>
        <source>Columns are consisting of following parts:</source>
        <translation>Sarakkeissa on seuraavat osat:</translation>
    </message>
    <message>
        <source>Chemical element</source>
        <translation>Alkuaine</translation>
    </message>
    <message>
        <source>The titles hold this fact</source>
        <translation>Otsikoissa on tämä tieto</translation>
    </message>
    <message>
        <source>is part number</source>
        <translation>on osa numero</translation>
    </message>
    <message>
        <source>Give zero to find it in anywhere</source>
        <translation>Nolla: etsitään mistä tahansa</translation>
    </message>
    <message>
        <source>Method</source>
        <translation>Menetelmä</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Yksikkö</translation>
    </message>
    <message>
        <source>Table</source>
        <translation>Taulu</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>Kenttä</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Tyyppi</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Pituus</translation>
    </message>
    <message>
        <source>Digits</source>
        <translation>Numerot</translation>
    </message>
    <message>
        <source>Indexed</source>
        <translation>Indeksoitu</translation>
    </message>
    <message>
        <source>Multiplier</source>
        <translation>Kerroin</translation>
    </message>
    <message>
        <source>Mineral</source>
        <translation>Mineraali</translation>
    </message>
    <message>
        <source>Parts are separated by character</source>
        <translation>Osat erottaa merkki</translation>
    </message>
    <message>
        <source>The character between the parts of a title</source>
        <translation>Merkki otsikon osien välissä</translation>
    </message>
    <message>
        <source>First row:</source>
        <translation>Ensimmäinen rivi:</translation>
    </message>
    <message>
        <source>The sample that the preview splits</source>
        <translation>Esimerkki, jonka esikatselu pilkkoo</translation>
    </message>
    <message>
        <source>As splitted:</source>
        <translation>Pilkottuna:</translation>
    </message>
    <message>
        <source>How the sample falls into parts</source>
        <translation>Miten esimerkki jakautuu osiin</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>frmSynonLib</name>
    <message>
        <source>Thesaurus</source>
        <translation>Sanasto</translation>
    </message>
    <message>
        <source>An empty cell changes nothing, &quot;-&quot; empties the target</source>
        <translation>Tyhjä solu ei muuta mitään, &quot;-&quot; tyhjentää kohteen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Tiedosto</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Muokkaa</translation>
    </message>
    <message>
        <source>&amp;Sort</source>
        <translation>&amp;Lajittele</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Avaa...</translation>
    </message>
    <message>
        <source>Load the rules of a thesaurus file</source>
        <translation>Lataa sanastotiedoston säännöt</translation>
    </message>
    <message>
        <source>&amp;Save...</source>
        <translation>&amp;Tallenna...</translation>
    </message>
    <message>
        <source>Save the rules in a file</source>
        <translation>Tallenna säännöt tiedostoon</translation>
    </message>
    <message>
        <source>Save As Default</source>
        <translation>Tallenna oletukseksi</translation>
    </message>
    <message>
        <source>Save the rules where each session loads them from</source>
        <translation>Tallenna säännöt sinne, mistä jokainen istunto ne lataa</translation>
    </message>
    <message>
        <source>Delete row</source>
        <translation>Poista rivi</translation>
    </message>
    <message>
        <source>Remove the rule of the active cell</source>
        <translation>Poista aktiivisen solun sääntö</translation>
    </message>
    <message>
        <source>By Value</source>
        <translation>Sarake Value</translation>
    </message>
    <message>
        <source>Sort the rules by this column</source>
        <translation>Lajittele säännöt tämän sarakkeen mukaan</translation>
    </message>
    <message>
        <source>By In</source>
        <translation>Sarake In</translation>
    </message>
    <message>
        <source>By Header</source>
        <translation>Sarake Header</translation>
    </message>
    <message>
        <source>By Element</source>
        <translation>Sarake Element</translation>
    </message>
    <message>
        <source>By Method</source>
        <translation>Sarake Method</translation>
    </message>
    <message>
        <source>By Unit</source>
        <translation>Sarake Unit</translation>
    </message>
    <message>
        <source>By Table</source>
        <translation>Sarake Table</translation>
    </message>
    <message>
        <source>By Field</source>
        <translation>Sarake Field</translation>
    </message>
    <message>
        <source>By Type</source>
        <translation>Sarake Type</translation>
    </message>
    <message>
        <source>By Digits</source>
        <translation>Sarake Digits</translation>
    </message>
    <message>
        <source>By Multiplied</source>
        <translation>Sarake Multiplied</translation>
    </message>
</context>
<context>
    <name>lodex::Application</name>
    <message>
        <source>There is not enough memory for this.</source>
        <translation>Muisti ei riitä tähän.</translation>
    </message>
</context>
<context>
    <name>lodex::FindBar</name>
    <message>
        <source>&amp;Replace</source>
        <translation>K&amp;orvaa</translation>
    </message>
    <message>
        <source>Replace &amp;all</source>
        <translation>Korvaa k&amp;aikki</translation>
    </message>
    <message>
        <source>Match &amp;case</source>
        <translation>Sama &amp;kirjainkoko</translation>
    </message>
    <message>
        <source>&amp;Whole cells</source>
        <translation>K&amp;oko solut</translation>
    </message>
    <message>
        <source>In &amp;formulas</source>
        <translation>&amp;Kaavoista</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Etsi</translation>
    </message>
    <message>
        <source>Text to find</source>
        <translation>Etsittävä teksti</translation>
    </message>
    <message>
        <source>Replace with</source>
        <translation>Korvaava teksti</translation>
    </message>
    <message>
        <source>Text to put in its place</source>
        <translation>Teksti, joka tulee sen tilalle</translation>
    </message>
    <message>
        <source>Search what was entered instead of what is shown</source>
        <translation>Etsi syötetystä sisällöstä, ei näytetystä</translation>
    </message>
    <message>
        <source>Find previous (Shift+F3)</source>
        <translation>Etsi edellinen (Shift+F3)</translation>
    </message>
    <message>
        <source>Find next (F3)</source>
        <translation>Etsi seuraava (F3)</translation>
    </message>
    <message>
        <source>Close (Esc)</source>
        <translation>Sulje (Esc)</translation>
    </message>
</context>
<context>
    <name>lodex::FormulaBar</name>
    <message>
        <source>Cell address</source>
        <translation>Solun osoite</translation>
    </message>
    <message>
        <source>The active cell. Type an address such as B7 or B7:D9 to go there.</source>
        <translation>Aktiivinen solu. Siirry kirjoittamalla osoite, esimerkiksi B7 tai B7:D9.</translation>
    </message>
    <message>
        <source>Content of the active cell</source>
        <translation>Aktiivisen solun sisältö</translation>
    </message>
    <message>
        <source>Enter (Return)</source>
        <translation>Hyväksy (Return)</translation>
    </message>
    <message>
        <source>Cancel (Esc)</source>
        <translation>Peruuta (Esc)</translation>
    </message>
</context>
<context>
    <name>lodex::GridActions</name>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Kumoa</translation>
    </message>
    <message>
        <source>Take the last change back</source>
        <translation>Peru viimeinen muutos</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>Tee &amp;uudelleen</translation>
    </message>
    <message>
        <source>Make the change again that was taken back</source>
        <translation>Tee peruttu muutos uudelleen</translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <translation>&amp;Leikkaa</translation>
    </message>
    <message>
        <source>Move the selection to the clipboard</source>
        <translation>Siirrä valinta leikepöydälle</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>K&amp;opioi</translation>
    </message>
    <message>
        <source>Copy the selection to the clipboard</source>
        <translation>Kopioi valinta leikepöydälle</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>L&amp;iitä</translation>
    </message>
    <message>
        <source>Paste the clipboard at the active cell</source>
        <translation>Liitä leikepöydän sisältö aktiiviseen soluun</translation>
    </message>
    <message>
        <source>Paste &amp;values</source>
        <translation>Liitä &amp;arvot</translation>
    </message>
    <message>
        <source>Paste without formulas and formats</source>
        <translation>Liitä ilman kaavoja ja muotoiluja</translation>
    </message>
    <message>
        <source>Clear co&amp;ntents</source>
        <translation>Tyhjennä &amp;sisältö</translation>
    </message>
    <message>
        <source>Empty the selected cells and keep their formats</source>
        <translation>Tyhjennä valitut solut ja säilytä muotoilut</translation>
    </message>
    <message>
        <source>Clear &amp;all</source>
        <translation>Tyhjennä &amp;kaikki</translation>
    </message>
    <message>
        <source>Empty the selected cells and take their formats away</source>
        <translation>Tyhjennä valitut solut ja poista muotoilut</translation>
    </message>
    <message>
        <source>Fill &amp;down</source>
        <translation>Täytä &amp;alas</translation>
    </message>
    <message>
        <source>Copy the first row of the selection over the others</source>
        <translation>Kopioi valinnan ensimmäinen rivi muille</translation>
    </message>
    <message>
        <source>Fill &amp;right</source>
        <translation>Täytä &amp;oikealle</translation>
    </message>
    <message>
        <source>Copy the first column of the selection over the others</source>
        <translation>Kopioi valinnan ensimmäinen sarake muille</translation>
    </message>
    <message>
        <source>Select &amp;all</source>
        <translation>Va&amp;litse kaikki</translation>
    </message>
    <message>
        <source>Select the whole sheet</source>
        <translation>Valitse koko taulukko</translation>
    </message>
    <message>
        <source>&amp;Find...</source>
        <translation>&amp;Etsi...</translation>
    </message>
    <message>
        <source>Find a text in the sheet</source>
        <translation>Etsi tekstiä taulukosta</translation>
    </message>
    <message>
        <source>R&amp;eplace...</source>
        <translation>Ko&amp;rvaa...</translation>
    </message>
    <message>
        <source>Find a text and put another one in its place</source>
        <translation>Etsi teksti ja korvaa se toisella</translation>
    </message>
    <message>
        <source>Find &amp;next</source>
        <translation>Etsi &amp;seuraava</translation>
    </message>
    <message>
        <source>Go to the next cell with the text</source>
        <translation>Siirry seuraavaan soluun, jossa teksti on</translation>
    </message>
    <message>
        <source>Find pre&amp;vious</source>
        <translation>Etsi e&amp;dellinen</translation>
    </message>
    <message>
        <source>Go to the cell before with the text</source>
        <translation>Siirry edelliseen soluun, jossa teksti on</translation>
    </message>
    <message>
        <source>&amp;Insert...</source>
        <translation>L&amp;isää...</translation>
    </message>
    <message>
        <source>Insert cells, or as many rows or columns as are selected</source>
        <translation>Lisää soluja, tai yhtä monta riviä tai saraketta kuin on valittu</translation>
    </message>
    <message>
        <source>&amp;Delete...</source>
        <translation>&amp;Poista...</translation>
    </message>
    <message>
        <source>Delete the selected cells, rows or columns</source>
        <translation>Poista valitut solut, rivit tai sarakkeet</translation>
    </message>
    <message>
        <source>Insert &amp;rows</source>
        <translation>Lisää &amp;rivejä</translation>
    </message>
    <message>
        <source>Insert rows above the selection</source>
        <translation>Lisää rivejä valinnan yläpuolelle</translation>
    </message>
    <message>
        <source>Delete r&amp;ows</source>
        <translation>Poista ri&amp;vit</translation>
    </message>
    <message>
        <source>Delete the selected rows</source>
        <translation>Poista valitut rivit</translation>
    </message>
    <message>
        <source>Insert &amp;columns</source>
        <translation>Lisää &amp;sarakkeita</translation>
    </message>
    <message>
        <source>Insert columns left of the selection</source>
        <translation>Lisää sarakkeita valinnan vasemmalle puolelle</translation>
    </message>
    <message>
        <source>Delete co&amp;lumns</source>
        <translation>Poista sarakk&amp;eet</translation>
    </message>
    <message>
        <source>Delete the selected columns</source>
        <translation>Poista valitut sarakkeet</translation>
    </message>
    <message>
        <source>Sort &amp;ascending</source>
        <translation>Lajittele &amp;nousevasti</translation>
    </message>
    <message>
        <source>Sort the selected rows by the column of the active cell</source>
        <translation>Lajittele valitut rivit aktiivisen solun sarakkeen mukaan</translation>
    </message>
    <message>
        <source>Sort &amp;descending</source>
        <translation>Lajittele &amp;laskevasti</translation>
    </message>
    <message>
        <source>Sort the selected rows by the column of the active cell, largest first</source>
        <translation>Lajittele valitut rivit aktiivisen solun sarakkeen mukaan, suurin ensin</translation>
    </message>
    <message>
        <source>Column &amp;width...</source>
        <translation>Sarakkeen &amp;leveys...</translation>
    </message>
    <message>
        <source>Set the width of the selected columns</source>
        <translation>Aseta valittujen sarakkeiden leveys</translation>
    </message>
    <message>
        <source>&amp;Fit columns</source>
        <translation>&amp;Sovita sarakkeet</translation>
    </message>
    <message>
        <source>Make the selected columns as wide as their texts</source>
        <translation>Tee valituista sarakkeista tekstiensä levyisiä</translation>
    </message>
    <message>
        <source>&amp;Hide rows</source>
        <translation>&amp;Piilota rivit</translation>
    </message>
    <message>
        <source>Hide the selected rows</source>
        <translation>Piilota valitut rivit</translation>
    </message>
    <message>
        <source>&amp;Show rows</source>
        <translation>&amp;Näytä rivit</translation>
    </message>
    <message>
        <source>Show hidden rows within the selection</source>
        <translation>Näytä valinnan piilotetut rivit</translation>
    </message>
    <message>
        <source>H&amp;ide columns</source>
        <translation>P&amp;iilota sarakkeet</translation>
    </message>
    <message>
        <source>Hide the selected columns</source>
        <translation>Piilota valitut sarakkeet</translation>
    </message>
    <message>
        <source>Sh&amp;ow columns</source>
        <translation>Näy&amp;tä sarakkeet</translation>
    </message>
    <message>
        <source>Show hidden columns within the selection</source>
        <translation>Näytä valinnan piilotetut sarakkeet</translation>
    </message>
    <message>
        <source>Freeze rows &amp;above</source>
        <translation>&amp;Kiinnitä yllä olevat rivit</translation>
    </message>
    <message>
        <source>Keep the rows above the active cell at the top</source>
        <translation>Pidä aktiivisen solun yläpuoliset rivit ylhäällä</translation>
    </message>
    <message>
        <source>&amp;Unfreeze rows</source>
        <translation>&amp;Vapauta rivit</translation>
    </message>
    <message>
        <source>Let all rows scroll</source>
        <translation>Anna kaikkien rivien vieriä</translation>
    </message>
    <message>
        <source>&amp;Bold</source>
        <translation>&amp;Lihavoi</translation>
    </message>
    <message>
        <source>Bold text</source>
        <translation>Lihavoitu teksti</translation>
    </message>
    <message>
        <source>&amp;Italic</source>
        <translation>&amp;Kursivoi</translation>
    </message>
    <message>
        <source>Italic text</source>
        <translation>Kursivoitu teksti</translation>
    </message>
    <message>
        <source>&amp;Underline</source>
        <translation>&amp;Alleviivaa</translation>
    </message>
    <message>
        <source>Underlined text</source>
        <translation>Alleviivattu teksti</translation>
    </message>
    <message>
        <source>&amp;Wrap text</source>
        <translation>&amp;Rivitä teksti</translation>
    </message>
    <message>
        <source>Break long texts into lines</source>
        <translation>Katkaise pitkät tekstit riveiksi</translation>
    </message>
    <message>
        <source>&amp;Font...</source>
        <translation>&amp;Fontti...</translation>
    </message>
    <message>
        <source>Choose font and size</source>
        <translation>Valitse fontti ja koko</translation>
    </message>
    <message>
        <source>Text &amp;colour...</source>
        <translation>&amp;Tekstin väri...</translation>
    </message>
    <message>
        <source>Choose the colour of the text</source>
        <translation>Valitse tekstin väri</translation>
    </message>
    <message>
        <source>Fi&amp;ll...</source>
        <translation>Tä&amp;yttö...</translation>
    </message>
    <message>
        <source>Choose the colour behind the text</source>
        <translation>Valitse tekstin taustaväri</translation>
    </message>
    <message>
        <source>N&amp;o fill</source>
        <translation>&amp;Ei täyttöä</translation>
    </message>
    <message>
        <source>Take the colour behind the text away</source>
        <translation>Poista tekstin taustaväri</translation>
    </message>
    <message>
        <source>&amp;Number format...</source>
        <translation>L&amp;ukumuoto...</translation>
    </message>
    <message>
        <source>Choose how numbers are shown</source>
        <translation>Valitse, miten luvut näytetään</translation>
    </message>
    <message>
        <source>Align by con&amp;tent</source>
        <translation>Tasaa &amp;sisällön mukaan</translation>
    </message>
    <message>
        <source>Texts left, numbers right</source>
        <translation>Tekstit vasemmalle, luvut oikealle</translation>
    </message>
    <message>
        <source>Align l&amp;eft</source>
        <translation>Tasaa &amp;vasemmalle</translation>
    </message>
    <message>
        <source>Align at the left edge</source>
        <translation>Tasaa vasempaan reunaan</translation>
    </message>
    <message>
        <source>Cent&amp;re</source>
        <translation>Keskit&amp;ä</translation>
    </message>
    <message>
        <source>Centre in the cell</source>
        <translation>Keskitä soluun</translation>
    </message>
    <message>
        <source>Align ri&amp;ght</source>
        <translation>Tasaa &amp;oikealle</translation>
    </message>
    <message>
        <source>Align at the right edge</source>
        <translation>Tasaa oikeaan reunaan</translation>
    </message>
    <message>
        <source>Zoom &amp;in</source>
        <translation>&amp;Suurenna</translation>
    </message>
    <message>
        <source>Show cells larger</source>
        <translation>Näytä solut suurempina</translation>
    </message>
    <message>
        <source>Zoom &amp;out</source>
        <translation>&amp;Pienennä</translation>
    </message>
    <message>
        <source>Show cells smaller</source>
        <translation>Näytä solut pienempinä</translation>
    </message>
    <message>
        <source>&amp;Zoom 100 %</source>
        <translation>K&amp;oko 100 %</translation>
    </message>
    <message>
        <source>Show cells in their natural size</source>
        <translation>Näytä solut luonnollisessa koossa</translation>
    </message>
    <message>
        <source>&amp;Print...</source>
        <translation>&amp;Tulosta...</translation>
    </message>
    <message>
        <source>Print the sheet</source>
        <translation>Tulosta taulukko</translation>
    </message>
    <message>
        <source>Print pre&amp;view...</source>
        <translation>Tulosteen &amp;esikatselu...</translation>
    </message>
    <message>
        <source>Show the pages as they will be printed</source>
        <translation>Näytä sivut sellaisina kuin ne tulostuvat</translation>
    </message>
    <message>
        <source>Cells, moving others down</source>
        <translation>Solut, muut siirtyvät alas</translation>
    </message>
    <message>
        <source>Cells, moving others right</source>
        <translation>Solut, muut siirtyvät oikealle</translation>
    </message>
    <message>
        <source>Whole rows</source>
        <translation>Koko rivit</translation>
    </message>
    <message>
        <source>Whole columns</source>
        <translation>Koko sarakkeet</translation>
    </message>
    <message>
        <source>Cells, moving others up</source>
        <translation>Solut, muut siirtyvät ylös</translation>
    </message>
    <message>
        <source>Cells, moving others left</source>
        <translation>Solut, muut siirtyvät vasemmalle</translation>
    </message>
    <message>
        <source>Insert</source>
        <translation>Lisää</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Poista</translation>
    </message>
    <message>
        <source>Insert:</source>
        <translation>Lisää:</translation>
    </message>
    <message>
        <source>Delete:</source>
        <translation>Poista:</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Fontti</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Täyttö</translation>
    </message>
    <message>
        <source>Text colour</source>
        <translation>Tekstin väri</translation>
    </message>
    <message>
        <source>Column width</source>
        <translation>Sarakkeen leveys</translation>
    </message>
    <message>
        <source>Width in characters:</source>
        <translation>Leveys merkkeinä:</translation>
    </message>
    <message>
        <source>Rename sheet</source>
        <translation>Nimeä taulukko uudelleen</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Nimi:</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Kumoa: %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>Tee &amp;uudelleen: %1</translation>
    </message>
    <message>
        <source>Fi&amp;ll</source>
        <translation>Tä&amp;ytä</translation>
    </message>
    <message>
        <source>F&amp;ormat</source>
        <translation>Muot&amp;oile</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Näytä</translation>
    </message>
    <message>
        <source>&amp;Rename...</source>
        <translation>&amp;Nimeä uudelleen...</translation>
    </message>
    <message>
        <source>&amp;Insert sheet</source>
        <translation>&amp;Lisää taulukko</translation>
    </message>
    <message>
        <source>&amp;Delete sheet</source>
        <translation>&amp;Poista taulukko</translation>
    </message>
    <message>
        <source>&amp;Sort...</source>
        <translation>La&amp;jittele...</translation>
    </message>
    <message>
        <source>Sort the selected rows by up to three columns</source>
        <translation>Lajittele valitut rivit enintään kolmen sarakkeen mukaan</translation>
    </message>
    <message>
        <source>Lines &amp;around</source>
        <translation>Viivat &amp;ympärille</translation>
    </message>
    <message>
        <source>Lines around the selection</source>
        <translation>Viivat valinnan ympärille</translation>
    </message>
    <message>
        <source>Lines around &amp;each cell</source>
        <translation>Viivat &amp;jokaisen solun ympärille</translation>
    </message>
    <message>
        <source>Lines around every selected cell</source>
        <translation>Viivat jokaisen valitun solun ympärille</translation>
    </message>
    <message>
        <source>Line &amp;below</source>
        <translation>Viiva &amp;alle</translation>
    </message>
    <message>
        <source>A line below the selection</source>
        <translation>Viiva valinnan alle</translation>
    </message>
    <message>
        <source>&amp;No lines</source>
        <translation>&amp;Ei viivoja</translation>
    </message>
    <message>
        <source>Take the lines of the selected cells away</source>
        <translation>Poista valittujen solujen viivat</translation>
    </message>
    <message>
        <source>Page &amp;set-up...</source>
        <translation>S&amp;ivun asetukset...</translation>
    </message>
    <message>
        <source>Choose paper, margins and orientation</source>
        <translation>Valitse paperi, marginaalit ja suunta</translation>
    </message>
    <message>
        <source>Fit columns to the pa&amp;ge</source>
        <translation>Sovita sarakkeet si&amp;vulle</translation>
    </message>
    <message>
        <source>Print all columns side by side, smaller where needed</source>
        <translation>Tulosta kaikki sarakkeet vierekkäin, tarvittaessa pienempinä</translation>
    </message>
    <message>
        <source>&amp;Sort</source>
        <translation>&amp;Lajittele</translation>
    </message>
    <message>
        <source>Line&amp;s</source>
        <translation>V&amp;iivat</translation>
    </message>
</context>
<context>
    <name>lodex::GridDelegate</name>
    <message>
        <source>Cell content</source>
        <translation>Solun sisältö</translation>
    </message>
</context>
<context>
    <name>lodex::GridTable</name>
    <message>
        <source>Worksheet cells</source>
        <translation>Taulukon solut</translation>
    </message>
</context>
<context>
    <name>lodex::HelpBrowser</name>
    <message>
        <source># Help

The pages of the guide are not installed. They belong into the folder

    %1
</source>
        <translation># Ohje

Oppaan sivuja ei ole asennettu. Niiden paikka on kansio

    %1
</translation>
    </message>
    <message>
        <source># Page not found

The page &quot;%1&quot; is not in the folder of the guide:

    %2
</source>
        <translation># Sivua ei löydy

Sivua &quot;%1&quot; ei ole oppaan kansiossa:

    %2
</translation>
    </message>
</context>
<context>
    <name>lodex::HelpWindow</name>
    <message>
        <source>Help</source>
        <translation>Ohje</translation>
    </message>
    <message>
        <source>Open %1 in the browser?</source>
        <translation>Avataanko %1 selaimessa?</translation>
    </message>
    <message>
        <source>Page</source>
        <translation>Sivu</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Takaisin</translation>
    </message>
    <message>
        <source>The page before</source>
        <translation>Edellinen sivu</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Eteenpäin</translation>
    </message>
    <message>
        <source>The page from which you went back</source>
        <translation>Sivu, jolta palattiin</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Alku</translation>
    </message>
    <message>
        <source>The first page of the guide</source>
        <translation>Oppaan ensimmäinen sivu</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Etsi</translation>
    </message>
    <message>
        <source>Find a text in this page (Ctrl+F)</source>
        <translation>Etsi tekstiä tältä sivulta (Ctrl+F)</translation>
    </message>
    <message>
        <source>Larger</source>
        <translation>Suurempi</translation>
    </message>
    <message>
        <source>Larger letters (Ctrl++)</source>
        <translation>Suuremmat kirjaimet (Ctrl++)</translation>
    </message>
    <message>
        <source>Smaller</source>
        <translation>Pienempi</translation>
    </message>
    <message>
        <source>Smaller letters (Ctrl+-)</source>
        <translation>Pienemmät kirjaimet (Ctrl+-)</translation>
    </message>
    <message>
        <source>Print...</source>
        <translation>Tulosta...</translation>
    </message>
    <message>
        <source>Print this page (Ctrl+P)</source>
        <translation>Tulosta tämä sivu (Ctrl+P)</translation>
    </message>
    <message>
        <source>Search all pages</source>
        <translation>Etsi kaikilta sivuilta</translation>
    </message>
    <message>
        <source>Lists the sections that contain all of the words</source>
        <translation>Luettelee kohdat, joissa ovat kaikki sanat</translation>
    </message>
    <message>
        <source>Contents</source>
        <translation>Sisällys</translation>
    </message>
    <message>
        <source>Sections found</source>
        <translation>Löydetyt kohdat</translation>
    </message>
    <message>
        <source>Find in this page</source>
        <translation>Etsi tältä sivulta</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>ei löydy</translation>
    </message>
    <message numerus="yes">
        <source>%n found</source>
        <translation>
            <numerusform>%n löytyi</numerusform>
            <numerusform>%n löytyi</numerusform>
        </translation>
    </message>
    <message>
        <source>The place before (Shift+F3)</source>
        <translation>Edellinen kohta (Shift+F3)</translation>
    </message>
    <message>
        <source>The next place (F3)</source>
        <translation>Seuraava kohta (F3)</translation>
    </message>
    <message>
        <source>%1 is no page of the guide</source>
        <translation>%1 ei ole oppaan sivu</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Ohje: %1</translation>
    </message>
    <message>
        <source>No section contains all of these words.</source>
        <translation>Missään kohdassa ei ole kaikkia näitä sanoja.</translation>
    </message>
</context>
<context>
    <name>lodex::MainWindow</name>
    <message>
        <source>Group</source>
        <translation>Ryhmä</translation>
    </message>
    <message>
        <source>Method</source>
        <translation>Menetelmä</translation>
    </message>
    <message>
        <source>No data sheets</source>
        <translation>Ei datataulukoita</translation>
    </message>
    <message>
        <source>The language changes on the next start.</source>
        <translation>Kieli vaihtuu seuraavassa käynnistyksessä.</translation>
    </message>
</context>
<context>
    <name>lodex::NumberFormatDialog</name>
    <message>
        <source>Number format</source>
        <translation>Lukumuoto</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Muoto</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Yleinen</translation>
    </message>
    <message>
        <source>Whole numbers</source>
        <translation>Kokonaisluvut</translation>
    </message>
    <message>
        <source>One decimal</source>
        <translation>Yksi desimaali</translation>
    </message>
    <message>
        <source>Two decimals</source>
        <translation>Kaksi desimaalia</translation>
    </message>
    <message>
        <source>Three decimals</source>
        <translation>Kolme desimaalia</translation>
    </message>
    <message>
        <source>Four decimals</source>
        <translation>Neljä desimaalia</translation>
    </message>
    <message>
        <source>Thousands, two decimals</source>
        <translation>Tuhaterotin, kaksi desimaalia</translation>
    </message>
    <message>
        <source>Negative numbers red</source>
        <translation>Negatiiviset luvut punaisella</translation>
    </message>
    <message>
        <source>Percent</source>
        <translation>Prosentti</translation>
    </message>
    <message>
        <source>Powers of ten</source>
        <translation>Kymmenen potenssit</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Päivämäärä</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Päivämäärä ja aika</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Teksti</translation>
    </message>
    <message>
        <source>Sample: %1</source>
        <translation>Esimerkki: %1</translation>
    </message>
    <message>
        <source>Numbers as</source>
        <translation>Lukujen muoto</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>Esimerkki</translation>
    </message>
</context>
<context>
    <name>lodex::PeriodicTable</name>
    <message>
        <source>Periodic table</source>
        <translation>Jaksollinen järjestelmä</translation>
    </message>
    <message>
        <source>marked</source>
        <translation>merkitty</translation>
    </message>
</context>
<context>
    <name>lodex::SortDialog</name>
    <message>
        <source>The &amp;first row is a heading and stays</source>
        <translation>&amp;Ensimmäinen rivi on otsikko ja pysyy paikallaan</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Lajittele</translation>
    </message>
    <message>
        <source>Sort by:</source>
        <translation>Lajitteluperuste:</translation>
    </message>
    <message>
        <source>then by:</source>
        <translation>sitten:</translation>
    </message>
    <message>
        <source>(none)</source>
        <translation>(ei mitään)</translation>
    </message>
    <message>
        <source>Largest first</source>
        <translation>Suurin ensin</translation>
    </message>
</context>
<context>
    <name>lodex::TextFileEditor</name>
    <message>
        <source>%1
Changes take effect on the next start.</source>
        <translation>%1
Muutokset tulevat voimaan seuraavassa käynnistyksessä.</translation>
    </message>
    <message>
        <source>Save the changes?</source>
        <translation>Tallennetaanko muutokset?</translation>
    </message>
</context>
<context>
    <name>lodex::WorksheetView</name>
    <message>
        <source>Sheets</source>
        <translation>Taulukot</translation>
    </message>
    <message>
        <source>Sum %1   Average %2   Count %3</source>
        <translation>Summa %1   Keskiarvo %2   Määrä %3</translation>
    </message>
    <message>
        <source>Count %1</source>
        <translation>Määrä %1</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Ei löydy</translation>
    </message>
    <message numerus="yes">
        <source>%n cell(s) changed</source>
        <translation>
            <numerusform>%n solu muuttui</numerusform>
            <numerusform>%n solua muuttui</numerusform>
        </translation>
    </message>
    <message>
        <source>Heading</source>
        <translation>Otsikko</translation>
    </message>
    <message>
        <source>Heading of the column:</source>
        <translation>Sarakkeen otsikko:</translation>
    </message>
    <message>
        <source>Heading of the row:</source>
        <translation>Rivin otsikko:</translation>
    </message>
</context>
</TS>
